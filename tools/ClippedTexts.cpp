#include "tools/ClippedTexts.h"

#include "kit/controls/ChromeNote.h"
#include "kit/controls/ChromeSlider.h"
#include "shell/StatusItems.h"
#include "shell/header/DocTab.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTreeView>

namespace qirn {

namespace {

bool givesWay(const QWidget& widget) {
    return qobject_cast<const ChromeNote*>(&widget) || qobject_cast<const StatusText*>(&widget) ||
           qobject_cast<const DocTab*>(&widget) || !widget.toolTip().isEmpty();
}

int advance(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().horizontalAdvance(text);
}

/// What its words take at least; nothing in a direction means any.
QSize neededBy(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if ((label || qobject_cast<const QAbstractButton*>(&widget)) && widget.hasHeightForWidth())
        return {0, widget.heightForWidth(widget.width())};
    if (label) return label->text().isEmpty() || givesWay(widget) ? QSize() : label->sizeHint();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        return qobject_cast<const DocTab*>(button) ? QSize() : QSize(advance(widget, button->text()), 0);
    if (qobject_cast<const ChromeSlider*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget))
        return widget.minimumSizeHint();
    return {};
}

QString partOf(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    return QStringLiteral("%1 \"%2\" %3 in %4")
        .arg(QLatin1String(widget.metaObject()->className()), widget.objectName(),
             label    ? label->text()
             : button ? button->text()
                      : widget.accessibleName(),
             QLatin1String(widget.parentWidget()->metaObject()->className()));
}

} // namespace

QStringList clippedIn(const QWidget& window) {
    QStringList lines;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible()) continue;
        const QSize needed = neededBy(*widget), room = widget->size();
        if (needed.width() > room.width() + 1 || needed.height() > room.height() + 1)
            lines << QStringLiteral("%1: %2 x %3 of %4 x %5")
                         .arg(partOf(*widget))
                         .arg(room.width())
                         .arg(room.height())
                         .arg(needed.width())
                         .arg(needed.height());
        if (const auto* tabs = qobject_cast<const QTabBar*>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                if (advance(*tabs, tabs->tabText(i)) > tabs->tabRect(i).width() ||
                    !tabs->rect().contains(tabs->tabRect(i)))
                    lines << QStringLiteral("%1: the tab \"%2\"").arg(partOf(*widget), tabs->tabText(i));
        if (const auto* rows = qobject_cast<const QTreeView*>(widget))
            for (int i = 0; i < rows->header()->count(); ++i)
                if (static_cast<const QAbstractItemView*>(rows)->sizeHintForColumn(i) > rows->columnWidth(i))
                    lines << QStringLiteral("%1: column %2").arg(partOf(*widget)).arg(i);
        if (const auto* menu = qobject_cast<const QComboBox*>(widget); menu && !givesWay(*menu)) {
            QStyleOptionComboBox option;
            option.initFrom(menu);
            const QRect place = menu->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                              QStyle::SC_ComboBoxEditField, menu);
            if (advance(*menu, menu->currentText()) > place.width() + 1)
                lines << QStringLiteral("%1: \"%2\"").arg(partOf(*widget), menu->currentText());
        }
        // What scrolls is larger than its window, but where no bar shows it.
        const QWidget* holder = widget->parentWidget();
        const auto* area = qobject_cast<const QAbstractScrollArea*>(holder->parentWidget());
        const bool scrolls = area && area->viewport() == holder;
        const bool isOut = !holder->rect().contains(widget->geometry());
        const bool isHidden = scrolls ? area->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff &&
                                            widget->width() > holder->width()
                                      : isOut;
        if (isHidden && !widget->isWindow())
            lines << QStringLiteral("%1 reaches out of it").arg(partOf(*widget));
    }
    lines.removeDuplicates();
    return lines;
}

} // namespace qirn

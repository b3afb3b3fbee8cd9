#include <QStyleOption>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/controls/PictureMenu.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

namespace {

void drawSeparator(const QStyleOptionMenuItem& option, QPainter& painter) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const QRectF rect = QRectF(option.rect).adjusted(m.groupGap, 0, -m.groupGap, 0);
    double left = rect.left();
    if (!option.text.isEmpty()) {
        painter.save();
        painter.setFont(ChromeFont::caption());
        ChromePaint::text(painter, rect, Qt::AlignLeft | Qt::AlignVCenter, option.text, c.dim);
        left += painter.fontMetrics().horizontalAdvance(option.text) + m.gap;
        painter.restore();
    }
    const QRectF rule(left, rect.center().y(), rect.right() - left, 1);
    ChromePaint::line(painter, ChromePaint::visual(rect, rule), ChromePaint::Side::top, c.divider);
}

} // namespace

void ChromeStyle::drawMenuRow(const QStyleOptionMenuItem& option, QPainter& painter,
                              const QWidget* menu) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        drawSeparator(option, painter);
        return;
    }
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool selected = enabled && option.state.testFlag(State_Selected);
    if (selected)
        ChromePaint::box(painter, QRectF(option.rect).adjusted(m.tightGap, m.px(1), -m.tightGap, -m.px(1)),
                         m.smallRadius, c.selected);

    const auto visual = [&option](const QRectF& part) { return ChromePaint::visual(option.rect, part); };
    QRectF rect = QRectF(option.rect).adjusted(m.groupGap, 0, -m.groupGap, 0);
    const QSize picture = PictureMenu::pictureOf(option, menu);
    const bool markColumn = option.menuHasCheckableItems || option.maxIconWidth > 0;
    if (markColumn) {
        const QRectF mark(rect.left(), rect.top(), m.smallIcon, rect.height());
        const QColor color = enabled ? c.text : c.faint;
        if (option.checked)
            ChromePaint::icon(painter, visual(mark), Icon::check, m.smallIcon, color);
        else if (!option.icon.isNull() && picture.isEmpty())
            ChromePaint::icon(painter, visual(mark), option.icon, {m.smallIcon, m.smallIcon},
                              enabled ? QIcon::Normal : QIcon::Disabled, QIcon::Off);
        rect.setLeft(mark.right() + m.gap);
    }
    if (!picture.isEmpty()) {
        QRectF place({}, picture);
        place.moveTopLeft({rect.left(), rect.center().y() - place.height() / 2});
        option.icon.paint(&painter, visual(place).toRect());
        rect.setLeft(place.right() + m.gap);
    }

    painter.save();
    painter.setFont(option.font);
    const QStringList parts = option.text.split(QLatin1Char('\t'));
    const int line = Qt::AlignVCenter | Qt::TextShowMnemonic;
    ChromePaint::text(painter, visual(rect), line | Qt::AlignLeft, parts.first(), enabled ? c.text : c.faint);
    if (parts.size() > 1)
        ChromePaint::text(painter, visual(rect), line | Qt::AlignRight | Qt::TextForceLeftToRight,
                          parts.last(),
                          !enabled   ? c.faint
                          : selected ? c.text
                                     : c.dim);
    painter.restore();
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QRectF arrow(rect.right() - m.chevron + m.tightGap, rect.top(), m.chevron, rect.height());
        ChromePaint::icon(painter, visual(arrow), Icon::chevronRight, m.chevron,
                          !enabled   ? c.faint
                          : selected ? c.text
                                     : c.dim);
    }
}

void ChromeStyle::drawMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    painter.fillRect(option.rect, c.bar);
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool open = option.state.testFlag(State_Selected) || option.state.testFlag(State_Sunken);
    if (enabled && open)
        ChromePaint::box(painter, QRectF(option.rect).adjusted(0, m.px(3), 0, -m.px(3)), m.smallRadius,
                         c.hover);
    ChromePaint::text(painter, option.rect, Qt::AlignCenter | Qt::TextHideMnemonic, option.text,
                      enabled ? c.text : c.faint);
}

} // namespace qirn

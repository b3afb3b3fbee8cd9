// The studio as a screen reader sees it.
#include "app/commands/CommandRows.h"
#include "shell/HudBubble.h"
#include "support/Window.h"

#include <map>

#include <QAccessible>
#include <QLineEdit>

using namespace qirn;
using namespace qirn::test;

namespace {

bool isControl(QAccessible::Role role) {
    switch (role) {
    case QAccessible::PushButton:
    case QAccessible::ButtonMenu:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::ComboBox:
    case QAccessible::Slider:
    case QAccessible::SpinBox:
    case QAccessible::EditableText:
    case QAccessible::PageTab:
    case QAccessible::List:
    case QAccessible::ListItem:
    case QAccessible::Canvas:
    case QAccessible::ColorChooser:
        return true;
    default:
        return false;
    }
}

/// What is wrong with the names below a node that are on screen: none, or one name twice in a group; empty if nothing is.
QString misnamed(QAccessibleInterface& parent, int& controls) {
    std::map<std::pair<QString, int>, int> names;
    for (int i = 0; i < std::min(parent.childCount(), 60); ++i) {
        QAccessibleInterface* child = parent.child(i);
        if (!child || child->state().invisible) continue;
        const QString name = child->text(QAccessible::Name);
        if (isControl(child->role())) {
            ++controls;
            const QString which = child->object() ? child->object()->metaObject()->className() +
                                                        (u' ' + child->object()->objectName())
                                                  : QString();
            if (name.isEmpty()) return "no name: " + which;
            if (child->role() != QAccessible::ListItem && ++names[{name, child->role()}] > 1)
                return "twice: " + name + u' ' + which;
        }
        if (const QString below = misnamed(*child, controls); !below.isEmpty()) return below;
    }
    return {};
}

} // namespace

class tst_Access : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void everyControlHasANameOfItsOwnInItsGroup() {
        Window w;
        LayerEdits::addLayer(w.model);
        const auto check = [&w](const QString& place) {
            QCoreApplication::processEvents();
            int controls = 0;
            QCOMPARE(place + misnamed(*QAccessible::queryAccessibleInterface(&w.view), controls), place);
            QVERIFY2(controls > 30, qPrintable(place + QString::number(controls)));
        };
        for (const ToolRow& row : kTools) {
            w.model.setTool(row.tool);
            check(QString(row.id) + ": ");
        }
        for (const char* panel : {"colorPanel", "brushPanel", "palettesPanel"}) {
            w.find<QAction>(panel).trigger();
            check(QString(panel) + ": ");
        }
        for (int kind = 0; kind <= static_cast<int>(PaintSheet::Kind::renameLayer); ++kind) {
            w.model.showSheet({static_cast<PaintSheet::Kind>(kind)});
            check(QStringLiteral("sheet %1: ").arg(kind));
            w.model.closeSheet();
        }
    }

    void everyControlHasAnObjectNameOfItsOwn() {
        Window w;
        for (const char* panel : {"brushPanel", "palettesPanel", "colorPanel"})
            w.find<QAction>(panel).trigger();
        QStringList twice;
        QSet<QString> names;
        for (const QWidget* widget : w.view.findChildren<QWidget*>()) {
            const QWidget* parent = widget->parentWidget();
            if (qobject_cast<const QLineEdit*>(widget) && parent && parent->focusPolicy() != Qt::NoFocus)
                continue; // a part of its control
            const bool isControl =
                widget->focusPolicy() != Qt::NoFocus && !widget->objectName().startsWith("qt_");
            if (!isControl || widget->window() != &w.view) continue; // nor a list that opens
            const QString name = widget->objectName();
            if (names.contains(name)) twice << QLatin1String(widget->metaObject()->className()) + u' ' + name;
            names << name;
        }
        QCOMPARE(twice.join(u'|'), QString());
    }

    void theCanvasTellsWhatItShowsAndTheTransientLineIsANotification() {
        Window w;
        w.canvas().actualPixels();
        auto* canvas = QAccessible::queryAccessibleInterface(&w.canvas());
        QCOMPARE(canvas->role(), QAccessible::Canvas);
        QCOMPARE(canvas->text(QAccessible::Description), "Test, 400 × 300 px, zoom 100%, layer Layer 1");
        w.model.messages().flash("The layer is locked");
        auto* line = QAccessible::queryAccessibleInterface(&w.find<HudBubble>());
        QVERIFY(line->role() == QAccessible::Notification && !line->state().invisible);
        QCOMPARE(line->text(QAccessible::Name), "The layer is locked");
    }
};

QIRN_TEST(tst_Access)
#include "tst_Access.moc"

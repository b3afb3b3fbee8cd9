#include "app/commands/CommandRows.h"
#include "app/model/CanvasStatus.h"
#include "app/model/choices/FixedKeys.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "shell/ToolRail.h"
#include "shell/header/HeaderBar.h"
#include "support/Window.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolButton>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int kControl = Qt::CTRL;

/// A key as the window system hands it on; `scan` is its place on the keyboard.
void sendKey(QWidget& widget, int key, quint32 scan, const QString& text,
             Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers, scan, 0, 0, text);
    QApplication::sendEvent(&widget, &press);
}

/// What keys can change, in one line.
QString marks(Window& w) {
    const ViewState& view = w.session().view;
    return QString("%1 %2 %3 %4 %5 %6 %7")
        .arg(rowOf(w.model.tool()).id)
        .arg(w.model.brushes().activeBrush().size)
        .arg(w.model.colors().primary().hex())
        .arg(view.zoom)
        .arg(view.rotation)
        .arg(view.flipView)
        .arg(w.lastStep());
}

} // namespace

class tst_Commands : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aCommandLeavesAStepThatChangedSomethingOrNone() {
        void (*const studios[])(Window&) = {
            [](Window&) {}, // an empty picture
            [](Window& w) {
                w.fill({10, 10, 50, 50});
                w.model.edit("Lock", [](PaintDocument& doc) { doc.activeLayer().isLocked = true; });
            },
            [](Window& w) {
                w.fill({10, 10, 50, 50});
                w.select({20, 20, 20, 20});
                w.model.transform().beginTransform();
            },
            [](Window& w) { w.model.showSheet({PaintSheet::Kind::exportPicture}); }};
        const QStringList otherNames{"Clipping", "Visibility", "Alpha Lock", "Lock"};
        Window w;
        for (const auto& prepare : studios) {
            for (const CommandRow& row : commandRows()) {
                if (!row.title || qstrcmp(row.name, "quit") == 0) continue; // a divider, or a menu by itself
                w.model.closeSheet();
                while (w.doc().canUndo()) w.model.undo();
                prepare(w);
                const bool covered = w.model.sheet().has_value();
                const int64_t depth = w.doc().undoDepth();
                const QString before = marks(w);
                const uint64_t picture = w.doc().fingerprint();
                const bool lifted = w.model.transform().isPending();
                QAction& action = *w.view.findChild<QAction*>(row.name);
                action.trigger();
                QCoreApplication::processEvents();
                if (covered) QVERIFY2(w.model.sheet() && marks(w) == before, row.name);
                QVERIFY2(w.model.transform().isPending() || !w.doc().differsFromLastCommit(), row.name);
                w.model.finishGesture();
                const bool isStep = w.doc().undoDepth() > depth && !lifted;
                if (isStep) {
                    const QString step = *w.doc().undoName();
                    QVERIFY2(action.text().remove(u'&').startsWith(step) || otherNames.contains(step),
                             qPrintable(row.name + (u' ' + step)));
                }
                while (w.doc().undoDepth() > depth) {
                    const uint64_t print = w.doc().fingerprint();
                    const auto selection = w.doc().selection;
                    w.doc().undo();
                    QVERIFY2(w.doc().fingerprint() != print || w.doc().selection != selection, row.name);
                }
                QVERIFY2(!isStep || w.doc().fingerprint() == picture, row.name);
            }
        }
    }

    void zoomAndThemeOfTheInterfaceAreChosenFromTheMenusAlsoOverASheet() {
        Window w;
        w.model.showSheet({PaintSheet::Kind::imageSize});
        const auto zoomBy = [&w](const char* command) {
            w.find<QAction>(command).trigger();
            return QrZoom::value();
        };
        QCOMPARE(zoomBy("interfaceZoomIn"), 1.15);
        QTest::keyClick(&w.view, Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(QrZoom::value(), 1.3);
        QCOMPARE(zoomBy("interfaceZoomOut"), 1.15);
        QCOMPARE(zoomBy("interfaceActualSize"), 1);
        const auto choose = [](QMenu& menu, const QString& title) {
            Q_EMIT menu.aboutToShow();
            for (QAction* action : menu.actions())
                if (action->text() == title) action->trigger();
        };
        auto& button = w.find<QToolButton>("interfaceZoom");
        choose(*button.menu(), "150%");
        QVERIFY(QrZoom::value() == 1.5 && button.text() == "150%");
        choose(*w.find<QAction>("theme").menu(), "Rose Gold");
        QCOMPARE(QirnThemes::currentID(), "rose-gold");
        QrZoom::setValue(1);
        QirnThemes::setCurrentID(QirnThemes::kDefaultID);
    }

    void keysFollowWhatIsTypedElseTheirPlace() {
        const QString us = "qwertyuiop[]asdfghjklzxcvbnm,./-=";
        const QString layouts[] = {
            us, "йцукенгшщзхъфывапролдячсмитьбю.-=", // the dead key of AZERTY types nothing
            QStringLiteral("azertyuiop$$qsdfghjklwxcvbn,;:!)=").replace(10, 1, QChar())};
        Window w;
        const auto after = [&w](quint32 scan, const QString& text, Qt::KeyboardModifiers keys) {
            w.model.setTool(Tool::text);
            w.set(&BrushSettings::size, 100);
            w.model.colors().defaultColors();
            w.model.colors().setPrimary(PaintColor(0, 1, 0));
            w.canvas().actualPixels();
            w.canvas().setRotation(3);
            if (w.session().view.flipView) w.canvas().toggleFlipView();
            sendKey(w.canvas(), 0, scan, text, keys);
            return marks(w);
        };
        const auto scanOf = [](int i) {
            return static_cast<quint32>(i < 12 ? 24 + i : i < 21 ? 26 + i : i < 31 ? 31 + i : i - 11);
        };
        for (const QString& layout : layouts) {
            for (int i = 0; i < us.size(); ++i) {
                const QString text = layout[i].isNull() ? QString() : QString(layout[i]);
                const QString expected = text.isEmpty() || text[0].unicode() < 128 ? text : QString(us[i]);
                for (const auto keys : {Qt::NoModifier, Qt::ShiftModifier})
                    QCOMPARE(text + after(scanOf(i), text, keys), text + after(0, expected, keys));
            }
        }
        sendKey(w.canvas(), 0x41e, 44, "о", Qt::ControlModifier); // Ctrl and the key of J
        QCOMPARE(w.doc().undoName(), "Duplicate Layer");
    }

    void secondKeysWorkWithoutAMenuBar() {
        Window w;
        w.fill({0, 0, 9, 9});
        w.view.menuBar()->hide();
        const Qt::KeyboardModifiers command = Qt::ControlModifier, shift = Qt::ShiftModifier,
                                    option = Qt::AltModifier;
        const auto state = [&w] {
            return QString("%1|%2|%3|%4|%5")
                .arg(w.doc().undoName().value_or(""), w.doc().redoName().value_or(""), w.session().name)
                .arg(w.view.isFullScreen())
                .arg(w.model.sheet().has_value());
        };
        const struct {
            Qt::Key key;
            Qt::KeyboardModifiers keys;
            const char* holds; ///< The last step, what was undone, the picture, the full screen, a sheet.
        } rows[] = {{Qt::Key_J, command, "Duplicate Layer||Test|0|0"},
                    {Qt::Key_PageDown, command | shift, "Move Layer Down||Test|0|0"},
                    {Qt::Key_PageUp, command | shift, "Move Layer Up||Test|0|0"},
                    {Qt::Key_Z, command, "Move Layer Down|Move Layer Up|Test|0|0"},
                    {Qt::Key_Y, command, "Move Layer Up||Test|0|0"},
                    {Qt::Key_Delete, command, "Fill||Test|0|0"},
                    {Qt::Key_Delete, option, "Fill||Test|0|0"},
                    {Qt::Key_Delete, {}, "Clear||Test|0|0"},
                    {Qt::Key_Tab, command, "||other|0|0"},
                    {Qt::Key_Backtab, command | shift, "Clear||Test|0|0"},
                    {Qt::Key_PageUp, command, "||other|0|0"},
                    {Qt::Key_PageDown, command, "Clear||Test|0|0"},
                    {Qt::Key_F11, {}, "Clear||Test|1|0"},
                    {Qt::Key_F11, {}, "Clear||Test|0|0"},
                    {Qt::Key_I, command | option | shift, "Clear||Test|0|1"}};
        w.model.pictures().newDocument(50, 40, 72, {}, "other");
        w.model.pictures().select(*w.model.pictures().sessions().front());
        for (const auto& [key, keys, holds] : rows) {
            QTest::keyClick(&w.canvas(), key, keys);
            QCOMPARE(state(), holds);
        }
        for (const char* unshown : {"nextPicture", "previousPicture"})
            QVERIFY(w.view.findChild<QAction*>(unshown)->shortcut().isEmpty());
    }

    void aChosenKeyWorksAndIsNobodyElses() {
        Window w;
        w.model.setTool(Tool::text);
        KeyChoices keys;
        keys.choose("duplicateLayer", kControl | Qt::Key_Y); // a second key of Redo
        keys.choose("newLayer", Qt::Key_E);                  // the Eraser's
        keys.choose(keyName(Tool::blur), Qt::Key_K);
        keys.choose(keyName(Tool::lasso), 0);
        w.model.setKeys(keys);
        const auto after = [&w](Qt::Key key, Qt::KeyboardModifiers held = {}) {
            QTest::keyClick(&w.canvas(), key, held);
            return QString("%1 %2").arg(rowOf(w.model.tool()).id, w.lastStep());
        };
        QCOMPARE(after(Qt::Key_J, Qt::ControlModifier), "text 0 ");
        QCOMPARE(after(Qt::Key_Y, Qt::ControlModifier), "text 1 Duplicate Layer");
        QCOMPARE(after(Qt::Key_E), "text 2 New Layer");
        QCOMPARE(after(Qt::Key_R), "text 2 New Layer");
        QCOMPARE(after(Qt::Key_L), "text 2 New Layer");
        QCOMPARE(after(Qt::Key_K), "blur 2 New Layer");
        const auto shown = [&w](const char* name) {
            return w.view.findChild<QAction*>(name)->shortcut().toString();
        };
        QVERIFY(shown("newLayer") == "E" && shown("redo") == "Ctrl+Shift+Z");
        QCOMPARE(w.view.findChild<QAction*>("lasso")->text(), "Lasso Select");
        QCOMPARE(w.find<QAbstractButton>("eraser").toolTip(), "Eraser");
        QCOMPARE(w.find<QAbstractButton>("blur").toolTip(), "Blur (K)");
        QVERIFY(PaintModel(PaintModel::LoadStores::yes, w.desktop, w.store).keys() == keys);
        w.model.setKeys({});
        QCOMPARE(after(Qt::Key_E), "eraser 2 New Layer");
        QCOMPARE(w.find<QAbstractButton>("headerSave").toolTip(), "Save (Ctrl+S)");
        keys.choose("save", 0);
        w.model.setKeys(keys);
        QCOMPARE(w.find<QAbstractButton>("headerSave").toolTip(), "Save");
    }

    void aBadStoredKeyCostsOnlyItself() {
        OwnWorld world;
        world.store.set(KeyChoices::storeKey, {{"copy", "F"},    // fits the picture in the window
                                               {"cut", "Alt+F"}, // opens a menu
                                               {"noCommand", "Ctrl+N"},
                                               {"open", "Ctrl+M"},
                                               {"paste", 7},
                                               {"redo", "nonsense"},
                                               {"save", "Ctrl+M"},
                                               {"tool.hand", "Ctrl+H"},
                                               {"tool.zoom", "7"}});
        PaintModel model(PaintModel::LoadStores::yes, world.desktop, world.store);
        const MainView view(model);
        KeyChoices expected;
        expected.choose("open", kControl | Qt::Key_M);
        expected.choose("tool.zoom", Qt::Key_7);
        QVERIFY(model.keys() == expected);
        std::map<int, QString> owners; // without choices no key has two
        for (const CommandRow& row : commandRows()) {
            for (const int key : row.name ? keysOf(row, {}) : std::vector<int>())
                QVERIFY2(owners.emplace(key, row.name).second && !fixedKey(key), qPrintable(keyText(key)));
        }
    }

    void tabHidesThePanelsAndThePictureStays() {
        Window w;
        const auto place = [&w] { return w.canvas().mapTo(&w.view, widgetPoint(w.canvas(), {0, 0})); };
        const QPointF before = place();
        w.canvas().clock = [now = 0.0]() mutable { return now += 1; };
        sendMouse(w.canvas(), QEvent::MouseMove, widgetPoint(w.canvas(), {30, 40}));
        const int64_t pointedAt = w.model.status().cursor().x;
        const int width = w.canvas().width();
        w.canvas().setFocus();
        for (const bool hidden : {true, false}) {
            QTest::keyClick(&w.canvas(), Qt::Key_Tab);
            QVERIFY(w.model.panelsAreHidden() == hidden && w.canvas().hasFocus());
            QVERIFY(hidden ? w.canvas().width() > width : w.canvas().width() == width);
            QVERIFY(QLineF(place(), before).length() < 0.01);
            QCOMPARE(w.model.status().cursor().x, pointedAt);
        }
        QTest::keyClick(&w.canvas(), Qt::Key_Tab, Qt::ShiftModifier);
        QWidget* left = QApplication::focusWidget();
        QVERIFY(left != &w.canvas());
        QTest::keyClick(left, Qt::Key_Tab);
        QVERIFY(w.canvas().hasFocus() && !w.model.panelsAreHidden());
        const auto round = [&w](Qt::KeyboardModifiers keys) {
            QString met;
            for (int i = 0; i < 5; ++i) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, keys);
                const QWidget* at = QApplication::focusWidget();
                const QRect canvas(w.canvas().mapTo(&w.view, QPoint()), w.canvas().size());
                const QPoint middle = at->mapTo(&w.view, at->rect().center());
                met += at == &w.canvas()                      ? 'c'
                       : w.find<HeaderBar>().isAncestorOf(at) ? 'h'
                       : middle.y() < canvas.top()            ? 'o'
                       : middle.x() < canvas.left()           ? 't'
                                                              : 'p';
            }
            return met;
        };
        QCOMPARE(round({}), "photc");
        QCOMPARE(round(Qt::ShiftModifier), "tohpc");
    }

    void optionOnTheCanvasOpensNoMenu() {
        Window w;
        QPointingDevice pen("pen", 1, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen, {},
                            1, 1);
        const auto send = [&](QEvent::Type type) {
            sendPen(w.canvas(), pen, type, {50, 50}, 1, Qt::AltModifier);
        };
        const auto option = [&](bool down) {
            down ? QTest::keyPress(&w.canvas(), Qt::Key_Alt, Qt::AltModifier)
                 : QTest::keyRelease(&w.canvas(), Qt::Key_Alt);
            return !w.view.menuBar()->activeAction();
        };
        w.canvas().setFocus();
        QVERIFY(option(true));
        send(QEvent::TabletPress); // picks a color
        send(QEvent::TabletRelease);
        QVERIFY(option(false));
        w.model.setTool(Tool::selectRect);
        send(QEvent::TabletPress);
        QVERIFY(option(true) && option(false));
        send(QEvent::TabletRelease);
        QVERIFY(option(true) && !option(false)); // with no hand on the canvas it opens
    }
};

QIRN_TEST(tst_Commands)
#include "tst_Commands.moc"

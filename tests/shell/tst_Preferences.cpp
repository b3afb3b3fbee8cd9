#include "app/commands/KeyOwners.h"
#include "kit/help/QirnHelp.h"
#include "shell/preferences/PreferencesView.h"
#include "shell/preferences/keys/KeyList.h"
#include "shell/preferences/pen/PenField.h"
#include "support/Window.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointingDevice>
#include <QSpinBox>
#include <QTabBar>

using namespace qirn;
using namespace qirn::test;

namespace {

enum Page { kSaving, kPen, kCanvas, kKeys };

/// The main window, and its preferences as their command opens them.
struct Opened : Window {
    PreferencesView* view = nullptr;

    explicit Opened(Page page) {
        QTest::keyClick(&canvas(), Qt::Key_Comma, Qt::ControlModifier);
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = window->findChild<PreferencesView*>()) view = found;
        if (!view) qFatal("No preferences came up.");
        showActive(*view->window());
        part<QTabBar>("preferenceSections").setCurrentIndex(page);
    }
    template <class T = QWidget> T& part(const char* name) {
        auto* found = view->findChild<T*>(QString::fromUtf8(name));
        if (!found) qFatal("The preferences have no %s.", name);
        return *found;
    }
    void press(const char* name) { QTest::mouseClick(&part(name), Qt::LeftButton); }
    QString label(const char* name) { return part<QLabel>(name).text(); }

    /// Types a key for the command that is found by these words.
    void type(const QString& words, int key, Qt::KeyboardModifiers held = {}) {
        showActive(*view->window());
        auto& search = part<QLineEdit>("searchKeys");
        auto& list = part<KeyList>("keys");
        search.setText(words);
        QTest::keyClick(&search, Qt::Key_Down);
        QTest::keyClick(&list, Qt::Key_Return);
        QTest::keyClick(&list, static_cast<Qt::Key>(key), held);
    }
    QWidget& mainWindow() { return Window::view; }
};

} // namespace

class tst_Preferences : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void eachRowSetsItsPreferenceAndKeepsIt() {
        const auto to = [](auto field, auto value) { // what is expected
            return [=](PaintPrefs& prefs) { prefs.*field = value; };
        };
        using P = PaintPrefs;
        const struct {
            Page page;
            const char* name;
            Qt::Key key; ///< 0 for a click
            std::function<void(PaintPrefs&)> expect;
        } rows[] = {
            {kSaving, "Autosave", Qt::Key_Down, to(&P::autosaveSeconds, 120)},
            {kSaving, "Autosave", Qt::Key_End, to(&P::autosaveSeconds, 0)},
            {kSaving, "Undo steps", Qt::Key_Up, to(&P::undoSteps, 110)},
            {kPen, "Pressure", Qt::Key_Home, to(&P::pressureCurve, 0.4)},
            {kPen, "Mouse: simulate pressure from speed (fast = thin)", {}, to(&P::mouseSpeedPressure, true)},
            {kPen, "Pen's eraser end switches to the Eraser", {}, to(&P::tabletEraserSwitches, false)},
            {kCanvas, "Show the brush outline", {}, to(&P::showBrushOutline, false)},
            {kCanvas, "Show stroke performance in the status bar", {}, to(&P::showPerformance, true)},
            {kCanvas, "New canvases start transparent", {}, to(&P::newDocTransparent, true)},
            {kCanvas, "Eyedropper samples all layers", {}, to(&P::eyedropperAllLayers, false)},
            {kCanvas, "Checkerboard", Qt::Key_End, to(&P::checkerSize, 40)}};
        Opened w(kSaving);
        PaintPrefs expected;
        for (const auto& row : rows) {
            w.part<QTabBar>("preferenceSections").setCurrentIndex(row.page);
            auto& control = w.part(row.name);
            QVERIFY2(control.isVisible() && !control.accessibleName().isEmpty(), row.name);
            if (row.key) {
                control.setFocus();
                QTest::keyClick(&control, row.key);
            } else {
                QTest::mouseClick(&control, Qt::LeftButton);
            }
            row.expect(expected);
            QVERIFY2(w.model.prefs() == expected && PaintPrefs::load(w.store) == expected, row.name);
        }
    }

    void theWindowIsOneAndShowsWhatWasChangedElsewhere() {
        Opened w(kSaving);
        w.set(&PaintPrefs::autosaveSeconds, 90);
        auto& autosave = w.part<QComboBox>("Autosave");
        QVERIFY(autosave.currentText() == "Every 90 seconds" && autosave.currentIndex() == 2 &&
                autosave.count() == 8);
        w.set(&PaintPrefs::autosaveSeconds, 600);
        QVERIFY(autosave.currentText() == "Every 10 minutes" && autosave.count() == 7);
        QTest::keyClick(w.view->window(), Qt::Key_Escape);
        QVERIFY(!w.view->isVisible());
        w.set(&PaintPrefs::undoSteps, 300);
        w.model.showPreferences();
        auto& steps = w.part<QSpinBox>("Undo steps");
        QVERIFY(w.view->isVisible() && steps.value() == 300);
        steps.setFocus();
        steps.selectAll();
        QTest::keyClicks(&steps, "500"); // on the way stands 50, which would drop steps
        QCOMPARE(w.model.prefs().undoSteps, 300);
        QTest::keyClick(&steps, Qt::Key_Return);
        QCOMPARE(w.model.prefs().undoSteps, 500);
    }

    void aKeyIsChangedByTypingIt() {
        Opened w(kKeys);
        w.type("duplicate", Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(w.label("keyWords"), "Ctrl+M is the key of \"Duplicate Layer\" now.");
        QCOMPARE(w.mainWindow().findChild<QAction*>("duplicateLayer")->shortcut(), QKeySequence("Ctrl+M"));
        const QirnHelpTopic* page = QirnHelp::topicWithId("shortcuts");
        QVERIFY(page && page->body.contains("Duplicate Layer\tCtrl+M"));
        w.type("eraser", Qt::Key_Q);
        QVERIFY(keyOf(Tool::eraser, w.model.keys()) == u'Q');
        const KeyChoices chosen = w.model.keys();
        for (const auto& [key, held] : {std::pair{Qt::Key_F, Qt::NoModifier}, // fits in the window
                                        {Qt::Key_L, Qt::AltModifier},         // opens the Layer menu
                                        {Qt::Key_Home, Qt::NoModifier},
                                        {Qt::Key_Escape, Qt::NoModifier}})
            w.type("new layer", key, held);
        w.type("hand", Qt::Key_H, Qt::ControlModifier); // a tool has a letter
        QVERIFY(w.model.keys() == chosen);
        QCOMPARE(w.label("keyWords"), "The key of a tool is one letter or digit.");
        w.type("hand", Qt::Key_Delete);
        QCOMPARE(keyOf(Tool::hand, w.model.keys()), QChar());
        QVERIFY(PaintModel(PaintModel::LoadStores::yes, w.desktop, w.store).keys() == w.model.keys());
    }

    void aKeyOfAnotherIsTakenOverOrLeft() {
        Opened w(kKeys);
        auto& list = w.part<KeyList>("keys");
        for (int row = 0; row < 40; ++row) {
            QTest::keyClick(&list, row < 20 ? Qt::Key_Down : Qt::Key_Up);
            QVERIFY(list.current()); // never on a heading
        }
        w.type("flatten", Qt::Key_S, Qt::ControlModifier);
        QVERIFY(w.label("keyWords").startsWith("Ctrl+S is the key of \"Save\"."));
        QVERIFY(w.model.keys().isEmpty());
        QTest::keyClick(&list, Qt::Key_Escape);
        QVERIFY(!list.asking() && w.view->isVisible() && w.model.keys().isEmpty());
        w.type("flatten", Qt::Key_S, Qt::ControlModifier);
        QTest::keyClick(&list, Qt::Key_S, Qt::ControlModifier); // once more
        QCOMPARE(w.label("keyWords"), "Ctrl+S is the key of \"Flatten Image\" now. \"Save\" has none.");
        w.type("undo", Qt::Key_B);
        w.press("takeOverKey");
        QVERIFY(w.model.keys().of("undo") == Qt::Key_B && keyOf(Tool::brush, w.model.keys()).isNull());
        w.press("resetKey");
        QVERIFY(!w.model.keys().of("undo") && keyOf(Tool::brush, w.model.keys()) == u'B');
        w.press("resetAllKeys"); // and cancel
        QVERIFY(!w.model.keys().isEmpty());
        w.desktop.answers = {0};
        w.press("resetAllKeys");
        QVERIFY(w.model.keys().isEmpty());
    }

    void thePenFieldTellsWhatThePenSays() {
        Opened w(kPen);
        w.set(&PaintPrefs::pressureCurve, 2);
        auto& field = w.part<PenField>("penField");
        const QPointingDevice tip("Tablet", 1, QInputDevice::DeviceType::Stylus,
                                  QPointingDevice::PointerType::Pen, {}, 1, 1);
        const QPointingDevice end("Tablet", 2, QInputDevice::DeviceType::Stylus,
                                  QPointingDevice::PointerType::Eraser, {}, 1, 1);
        const auto send = [&](const QPointingDevice& device, QEvent::Type type, QPointF at, double pressure,
                              int after) {
            QTabletEvent event(type, &device, at, field.mapToGlobal(at), pressure, 12, -30, 0, 0, 0, {},
                               Qt::LeftButton, Qt::LeftButton);
            event.setTimestamp(static_cast<quint64>(1000 + after));
            event.ignore();
            QApplication::sendEvent(&field, &event);
            return event.isAccepted();
        };
        const auto line = [&](const QPointingDevice& device) {
            bool taken = send(device, QEvent::TabletPress, {40, 60}, 0.5, 0);
            for (int i = 1; i <= 20; ++i)
                taken &= send(device, QEvent::TabletMove, {40.0 + 5 * i, 60}, 0.5, 5 * i);
            return taken;
        };
        const auto inkAt = [&](QPoint at) {
            const QImage shown = field.grab().toImage();
            return shown.pixelColor(at) != shown.pixelColor(20, 20);
        };
        QVERIFY(line(tip));
        QTRY_COMPARE(w.label("penPressure"), "50.0%");
        QVERIFY(w.label("penDevice") == "Tablet" && w.label("penPointer") == "Pen tip");
        QCOMPARE(w.label("penShaped"), "25.0%");
        QCOMPARE(w.label("penTilt"), "12° across, -30° along");
        QCOMPARE(w.label("penRate"), "200 events a second");
        QVERIFY(inkAt({90, 60}) && inkAt({90, 62}) && !inkAt({90, 65})); // 12 pixels at full pressure
        send(tip, QEvent::TabletRelease, {140, 60}, 0, 101);
        QVERIFY(field.accessibleDescription().contains("Pressure: 50.0%"));
        QVERIFY(line(end) && !inkAt({90, 60}));
        QTRY_COMPARE(w.label("penPointer"), "Eraser end");
        send(end, QEvent::TabletRelease, {140, 60}, 0, 101);
        QTest::qWait(60); // a mouse event is no echo of the pen's
        dragOver(field, {0.2, 0.5}, {0.8, 0.5});
        QVERIFY(inkAt({field.width() / 2, field.height() / 2}));
        QTRY_COMPARE(w.label("penPressure"), "100.0%");
        w.press("clearPenField");
        QVERIFY(field.isBlank());
    }
};

QIRN_TEST(tst_Preferences)
#include "tst_Preferences.moc"

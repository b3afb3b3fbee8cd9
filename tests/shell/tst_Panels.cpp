#include "app/model/Palettes.h"
#include "kit/controls/ChromeSlider.h"
#include "shell/ColorWells.h"
#include "shell/panels/InspectorColumn.h"
#include "shell/panels/SplitGrip.h"
#include "shell/panels/color/ColorWheel.h"
#include "shell/panels/color/SwatchGrid.h"
#include "shell/panels/color/WheelPart.h"
#include "shell/panels/layers/LayerRowDelegate.h"
#include "support/Window.h"

#include <QAccessible>
#include <QLineEdit>
#include <QMenu>
#include <QTabBar>
#include <QTableView>

using namespace qirn;
using namespace qirn::test;

class tst_Panels : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void theColumnKeepsItsWidthItsTabAndRoomForTheLayers() {
        Window w;
        auto& side = w.find<SplitGrip>("inspectorWidth");
        const auto drag = [](SplitGrip& grip, QPoint by) {
            sendMouse(grip, QEvent::MouseButtonPress, {1, 1});
            sendMouse(grip, QEvent::MouseMove, QPointF(1, 1) + by);
            sendMouse(grip, QEvent::MouseButtonRelease, QPointF(1, 1) + by);
            QCoreApplication::processEvents();
        };
        auto& column = w.find<InspectorColumn>();
        drag(side, {-900, 0});
        QCOMPARE(column.width(), 420);
        drag(side, {900, 0});
        QCOMPARE(column.width(), 232);
        QTest::keyClick(&side, Qt::Key_Left);
        drag(w.find<SplitGrip>("inspectorTabsHeight"), {0, 900});
        auto& list = w.find<QTableView>("layers");
        const int fourRows = 4 * LayerRowDelegate::rowHeight();
        QVERIFY(list.height() >= fourRows &&
                list.mapTo(&column, list.rect().bottomLeft()).y() < column.height());
        w.model.setInspectorTab(InspectorTab::palettes);
        w.model.togglePanels();
        QTest::keyClick(&w.canvas(), Qt::Key_1, Qt::ControlModifier);
        QVERIFY(w.model.inspectorTab() == InspectorTab::color && column.isVisible());
        w.model.setInspectorTab(InspectorTab::brush);
        w.click("primaryColor");
        QVERIFY(w.model.inspectorTab() == InspectorTab::color);
        MainView again(w.model);
        QCOMPARE(again.findChild<InspectorColumn*>()->maximumWidth(), 240);
    }

    void wellsShowSwapAndResetTheColors() {
        Window w;
        w.model.colors().pick(PaintColor::fromBytes(10, 20, 30), Colors::AddRecent::no);
        auto& primary = w.find<ColorSquare>("primaryColor");
        QCOMPARE(primary.color(), QColor(10, 20, 30));
        // The part of the second color that stands out behind the first.
        auto& second = w.find<ColorSquare>("secondaryColor");
        QTest::mouseClick(&second, Qt::LeftButton, {}, {second.width() - 3, second.height() - 3});
        QCOMPARE(primary.color(), QColor(Qt::white));
        w.click("swapColors");
        QCOMPARE(primary.color(), QColor(10, 20, 30));
        w.click("defaultColors");
        QCOMPARE(primary.color(), QColor(Qt::black));
        QCOMPARE(second.color(), QColor(Qt::white));
    }

    void aDragStaysWithItsPartOfTheWheelAndGrayKeepsTheHue() {
        Window w;
        auto& wheel = w.find<ColorWheel>();
        const auto& color = [&w]() -> const PaintColor& { return w.model.colors().primary(); };
        const auto drag = [&wheel](QPointF from, QPointF to) { // in sides of the wheel from its center
            const double side = std::min(wheel.width(), wheel.height());
            const QPointF center(wheel.width() / 2.0, wheel.height() / 2.0);
            sendMouse(wheel, QEvent::MouseButtonPress, center + from * side);
            sendMouse(wheel, QEvent::MouseMove, center + (from + to) / 2 * side);
            sendMouse(wheel, QEvent::MouseMove, center + to * side);
            sendMouse(wheel, QEvent::MouseButtonRelease, center + to * side);
        };
        const HueColor before = wheel.color();
        drag({0.45, 0}, {0, 0.1}); // from the ring into the square
        QCOMPARE(wheel.color(), (HueColor{0.25, before.s, before.v}));
        drag({0, 0}, {2, -2}); // and out of it
        QCOMPARE(wheel.color(), (HueColor{0.25, 1, 1}));
        QCOMPARE(color(), PaintColor(0.5, 1, 0)); // through no 8 bits
        drag({0, 0}, {0, 2});
        QCOMPARE(color(), PaintColor::black());
        drag({0, 0}, {-2, -2});
        QCOMPARE(color(), PaintColor::white());
        auto& slider = w.find<ChromeSlider>("Saturation");
        slider.enter(1);
        QCOMPARE(color(), PaintColor(0.5, 1, 0)); // the hue has come through both
        QVERIFY(w.model.colors().recent().empty());
        for (const PaintColor& gray : {PaintColor::black(), PaintColor(0.3, 0.3, 0.3)}) {
            w.model.colors().pick(gray, Colors::AddRecent::no);
            QCOMPARE(wheel.color().h, 0.25);
        }
        w.click("rgb");
        auto& red = w.find<ChromeSlider>("Red");
        QCOMPARE(red.valueText(), "77");
        red.enter(0);
        QCOMPARE(wheel.color().h, 0.5);
        w.find<WheelPart>("wheelHue").setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        QCOMPARE(std::lround(wheel.color().h * 360), 179);
        QAccessibleInterface* part = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
        QCOMPARE(part->valueInterface()->currentValue().toInt(), 179);
    }

    void aBadHexNumberStaysAndAGoodOneIsPicked() {
        Window w;
        auto& hex = w.find<QLineEdit>("hex");
        const QString before = hex.text();
        hex.setFocus();
        hex.setText("#12");
        QTest::keyClick(&hex, Qt::Key_Return);
        QVERIFY(w.desktop.beeps == 1 && hex.hasFocus() && hex.selectedText() == "#12");
        QCOMPARE(w.model.colors().primary().hex(), before);
        QTest::keyClick(&hex, Qt::Key_Escape);
        QCOMPARE(hex.text(), before);
        QCOMPARE(QApplication::focusWidget(), &w.canvas()); // letters mean tools again
        QTest::mouseClick(&hex, Qt::LeftButton); // selects what is there
        QTest::keyClicks(&hex, "b31");
        QTest::keyClick(&hex, Qt::Key_Return);
        QCOMPARE(hex.text(), "#BB3311");
        QCOMPARE(w.model.colors().recent(), std::vector{*PaintColor::fromHex("b31")});
        QCOMPARE(QApplication::focusWidget(), &w.canvas());
    }

    void swatchesArePickedRemovedAndReordered() {
        Window w;
        const auto at = [](SwatchGrid& grid, int index) { return grid.cell(index).center(); };
        const auto press = [&](SwatchGrid& grid, int index) {
            QTest::mouseClick(&grid, Qt::LeftButton, {}, at(grid, index).toPoint());
        };
        const auto colors = [&w] { return w.model.palettes().currentPalette().colors; };
        press(w.find<SwatchGrid>("paletteColors"), 2);
        QVERIFY(w.model.colors().primary() == colors()[2].color && w.model.colors().recent().empty());
        w.model.setInspectorTab(InspectorTab::palettes);
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents(); // layouts in layouts ask again
        w.find<QTabBar>("inspectorTabs").setFocus();                   // a panel's place is behind the tabs
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget()->objectName(), "palettes");
        auto& grid = w.find<SwatchGrid>("swatches");
        press(grid, 5);
        QCOMPARE(w.model.colors().recent(), std::vector{colors()[5].color});
        const auto drag = [&](int from, int to) {
            const QPointF before(-grid.cell(0).width() / 3, 0);
            sendMouse(grid, QEvent::MouseButtonPress, at(grid, from));
            sendMouse(grid, QEvent::MouseMove, at(grid, to) + before);
            sendMouse(grid, QEvent::MouseButtonRelease, at(grid, to) + before);
        };
        drag(0, 3);
        QVERIFY(w.model.palettes().userPalettes().empty()); // a built-in one stays in order
        w.click("addColor");
        auto expected = colors();
        drag(1, 4);
        std::rotate(expected.begin() + 1, expected.begin() + 2, expected.begin() + 4);
        QCOMPARE(colors(), expected);
        drag(4, 0);
        std::rotate(expected.begin(), expected.begin() + 4, expected.begin() + 5);
        QCOMPARE(colors(), expected);
        // The same by the keyboard, and what a screen reader is told.
        grid.setFocus();
        for (const int key : {Qt::Key_Home, Qt::Key_Right}) QTest::keyClick(&grid, Qt::Key(key));
        QTest::keyClick(&grid, Qt::Key_Right, Qt::AltModifier);
        std::swap(expected[1], expected[2]);
        QCOMPARE(colors(), expected);
        QAccessibleInterface* focus = QAccessible::queryAccessibleInterface(&grid)->focusChild();
        QCOMPARE(focus->text(QAccessible::Name), expected[2].name + u' ' + expected[2].color.hex());
        QTest::keyClick(&grid, Qt::Key_Space);
        QCOMPARE(w.model.colors().primary(), expected[2].color);
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&grid, &menu);
        w.find<QMenu>("swatchMenu").actions().front()->trigger();
        expected.erase(expected.begin() + 2);
        QCOMPARE(colors(), expected);
    }
};

QIRN_TEST(tst_Panels)
#include "tst_Panels.moc"

#include "app/desktop/BackgroundQueue.h"
#include "app/edits/LayerEdits.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/Palettes.h"
#include "core/SeededRandom.h"
#include "kit/controls/ChromeSlider.h"
#include "shell/ColorWells.h"
#include "shell/panels/InspectorColumn.h"
#include "shell/panels/LayerRowDelegate.h"
#include "shell/panels/LayerThumbnails.h"
#include "shell/panels/LayersModel.h"
#include "shell/panels/SplitGrip.h"
#include "shell/panels/color/ColorWheel.h"
#include "shell/panels/color/SwatchGrid.h"
#include "shell/panels/color/WheelPart.h"
#include "support/Window.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QTabBar>

using namespace qirn;
using namespace qirn::test;

class tst_Panels : public QObject {
    Q_OBJECT

    static void clickRow(Window& w, int row, int x) {
        auto& list = w.find<QListView>("layers");
        const QRect rect = list.visualRect(list.model()->index(row, 0));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {rect.left() + x, rect.center().y()});
    }

    static QString textOf(const QListView& list, int row) {
        return list.model()->index(row, 0).data().toString();
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void rowsShowTheStackFromTheTopAndChooseAndHide() {
        Window w;
        auto& list = w.find<QListView>("layers");
        w.click("newLayer");
        QCOMPARE(list.model()->rowCount(), 3);
        QCOMPARE(textOf(list, 0), w.doc().layer(2).name);
        QCOMPARE(textOf(list, 2), "Background");
        QCOMPARE(list.currentIndex().row(), 0);
        w.model.undo();
        QCOMPARE(list.model()->rowCount(), 2);
        QCOMPARE(list.currentIndex().row(), 0);
        clickRow(w, 1, 100);
        QCOMPARE(w.doc().activeIndex(), 0);
        clickRow(w, 0, 100);
        QCOMPARE(w.doc().activeIndex(), 1);
        QCOMPARE(w.doc().undoDepth(), 0); // choosing is no step
        clickRow(w, 1, 12);
        QVERIFY(!w.doc().layer(0).isVisible && w.doc().layer(1).isVisible);
        QCOMPARE(w.doc().activeIndex(), 1); // the eye chooses nothing
        QCOMPARE(w.lastStep(), "1 Visibility");
        w.model.undo();
        QVERIFY(w.doc().layer(0).isVisible);
        QCOMPARE(list.model()->index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(w.doc().activeIndex(), 0);
        QTest::keyClick(&list, Qt::Key_Space);
        QVERIFY(!w.doc().layer(0).isVisible);
        QTest::keyClick(&list, Qt::Key_Up);
        w.click("deleteLayer");
        QCOMPARE(w.doc().layerCount(), 1);
        QCOMPARE(w.doc().layer(0).name, "Background");
    }

    /// Random edits: at any time the rows are the layers, a row that a view holds stays with its layer, and the list
    /// chooses no layer by itself, which a world without a window shows.
    void rowsFollowTheirLayersThroughAnyEdit() {
        OwnWorld plain;
        plain.model.pictures().newDocument(400, 300, 72, PaintColor::white(), "Test");
        Window w;
        QAbstractItemModel& rows = *w.find<QListView>("layers").model();
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::Fatal);
        SeededRandom random(7);
        const auto below = [&](int64_t n) {
            return static_cast<int64_t>(random.unit() * static_cast<double>(n));
        };
        for (int i = 0; i < 120; ++i) {
            const int64_t count = w.doc().layerCount(), chosen = below(count), other = below(count),
                          kind = below(8);
            const QPersistentModelIndex row = rows.index(static_cast<int>(count - 1 - chosen), 0);
            const QUuid id = w.doc().layer(chosen).id;
            for (OwnWorld* world : {&plain, static_cast<OwnWorld*>(&w)}) {
                PaintModel& model = world->model;
                LayerEdits::setActiveLayer(model, chosen);
                void (*const edits[])(PaintModel&) = {LayerEdits::addLayer, LayerEdits::duplicateLayer,
                                                      LayerEdits::mergeDown, LayerEdits::deleteLayer};
                if (kind < 4) edits[kind](model);
                if (kind == 4) LayerEdits::moveLayer(model, chosen, other);
                if (kind == 5) world->fill({i, i, 90, 80}, {static_cast<uint8_t>(i), 9, 0, 255});
                if (kind == 6) model.undo();
                if (kind == 7) model.redo();
                model.announce();
            }
            QCOMPARE(w.doc().activeIndex(), plain.doc().activeIndex());
            QCOMPARE(rows.rowCount(), static_cast<int>(w.doc().layerCount()));
            for (int64_t layer = 0; layer < w.doc().layerCount(); ++layer) {
                const QModelIndex index = rows.index(static_cast<int>(w.doc().layerCount() - 1 - layer), 0);
                QCOMPARE(index.data().toString(), w.doc().layer(layer).name);
                QVERIFY(w.doc().layer(layer).id != id || !row.isValid() || row == index);
            }
        }
    }

    void anotherPictureKeepsItsActiveLayer() {
        Window w;
        w.click("newLayer");
        const SessionRef first = w.model.pictures().sessions().front();
        LayerEdits::setActiveLayer(w.model, 1);
        w.model.pictures().newDocument(90, 90, 72, PaintColor::white(), "Other");
        for (int i = 0; i < 3; ++i) w.click("newLayer");
        LayerEdits::setActiveLayer(w.model, 3);
        const SessionRef other = w.model.pictures().sessions().back();
        w.model.pictures().select(*first);
        QCOMPARE(first->doc().activeIndex(), 1);
        w.model.pictures().select(*other);
        QCOMPARE(other->doc().activeIndex(), 3);
        QCOMPARE(w.find<QListView>("layers").currentIndex().row(), 1);
    }

    void thumbnailsAreOfTheLatestCommit() {
        Window w;
        QAbstractItemModel& rows = *w.find<QListView>("layers").model();
        const auto shown = [&] {
            rows.index(0, 0).data(Qt::DecorationRole); // asks for what is not there
            BackgroundQueue::previews().finish();
            QCoreApplication::processEvents();
            return rows.index(0, 0).data(Qt::DecorationRole).value<QImage>();
        };
        const QImage empty = shown();
        paintRect(w.doc(), w.layer(), {0, 0, 400, 300}, {0, 255, 0, 255});
        w.model.announce();
        QCOMPARE(shown(), empty);
        w.doc().commit("Fill");
        w.model.announce();
        QCOMPARE(shown(), thumbnailOf(w.doc().grid(), w.layer().tiles(), empty.width()));
        w.model.undo();
        QCOMPARE(shown(), empty);
    }

    void aThumbnailIsTheMeanOfWhatItCovers() {
        const auto doc = randomDocument(300, 260, 1, 3);
        const Layer& layer = doc->layer(0);
        const QImage image = thumbnailOf(layer.grid(), layer.tiles(), 40);
        QCOMPARE(image.size(), QSize(40, 35));
        for (int y = 0; y < 35; ++y) {
            for (int x = 0; x < 40; ++x) {
                int64_t sum = 0, count = 0;
                for (int64_t v = y * 260 / 35; v < (y + 1) * 260 / 35; ++v)
                    for (int64_t u = x * 300 / 40; u < (x + 1) * 300 / 40; ++u, ++count)
                        sum += layer.pixel(u, v)[3];
                QCOMPARE(int(image.constScanLine(y)[4 * x + 3]), int((sum + count / 2) / count));
            }
        }
        QVERIFY(thumbnailOf({30'000, 1}, TileArray(118), 40).size() == QSize(40, 1));
    }

    void opacityIsLiveAndOneStep() {
        Window w;
        auto& slider = w.find<ChromeSlider>("layerOpacity");
        QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 2, 10});
        QVERIFY(qAbs(w.doc().activeLayer().opacity - 0.5) < 0.02);
        QCOMPARE(w.doc().undoDepth(), 0);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10});
        QCOMPARE(w.lastStep(), "1 Layer Opacity");
        const double set = w.doc().activeLayer().opacity;
        QVERIFY(qAbs(set - 0.25) < 0.02);
        QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10}); // to where it is
        QCOMPARE(w.doc().undoDepth(), 1);
        // Undo before the wheel has come to rest takes back the opacity, and nothing comes after it.
        w.paint();
        sendWheel(slider, {5, 5}, {0, 120});
        w.click("headerUndo");
        QFocusEvent rest(QEvent::FocusOut);
        QApplication::sendEvent(&slider, &rest);
        QCOMPARE(w.doc().undoName(), "Brush Stroke");
        QCOMPARE(w.doc().redoName(), "Layer Opacity");
        w.model.undo();
        w.model.undo();
        QCOMPARE(slider.value(), 1.0);
    }

    void theBlendModeIsTheActiveLayersAndARowTellsWhatItsLayerIs() {
        Window w;
        auto& menu = w.find<QComboBox>("blendMode");
        QCOMPARE(menu.count(), kBlendModeCount);
        menu.setFocus();
        QTest::keyClick(&menu, Qt::Key_Down);
        QCOMPARE(w.doc().activeLayer().blendMode, BlendMode::multiply);
        QCOMPARE(w.lastStep(), "1 Blend Mode");
        clickRow(w, 1, 100);
        QCOMPARE(menu.currentIndex(), 0);
        QCOMPARE(w.doc().undoDepth(), 1);
        const auto marks = [&] {
            return w.find<QListView>("layers").model()->index(1, 0).data(LayersModel::kMarksRole).toString();
        };
        QCOMPARE(marks(), QString());
        LayerEdits::setLayer(w.model, 0, "Change", [](Layer& layer) {
            layer.opacity = 0.5;
            layer.isClipping = layer.isLocked = layer.alphaLocked = true;
        });
        QCOMPARE(marks(), "Clip · Lock · α · 50%");
    }

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
        auto& list = w.find<QListView>("layers");
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
        hex.setFocus();
        hex.setText("b31");
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

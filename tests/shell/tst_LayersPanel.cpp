#include "core/SeededRandom.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeStepper.h"
#include "kit/controls/ChromeToggle.h"
#include "shell/panels/layers/LayerThumbnails.h"
#include "shell/panels/layers/LayersList.h"
#include "shell/panels/layers/LayersModel.h"
#include "support/Window.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>

using namespace qirn;
using namespace qirn::test;

namespace {

struct LayersWindow : Window {
    LayersList& list = find<LayersList>("layers");
    LayersModel& rows = static_cast<LayersModel&>(*list.model());

    QModelIndex cell(int row, LayerColumn column) { return rows.index(row, static_cast<int>(column)); }
    QPoint place(int row, LayerColumn column = LayerColumn::name) {
        return list.visualRect(cell(row, column)).center();
    }
    void clickCell(int row, LayerColumn column = LayerColumn::name) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place(row, column));
    }
    QStringList names() {
        QStringList names;
        for (int row = 0; row < rows.rowCount(); ++row) names << rows.layer(row).name;
        return names;
    }
    QString spoken(int row) { return cell(row, LayerColumn::name).data(Qt::AccessibleTextRole).toString(); }
};

} // namespace

class tst_LayersPanel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void rowsShowTheStackFromTheTopAndChoose() {
        LayersWindow w;
        w.click("newLayer");
        QCOMPARE(w.names(), (QStringList{"Layer 2", "Layer 1", "Background"}));
        QCOMPARE(w.list.currentIndex().row(), 0);
        w.model.undo();
        QCOMPARE(w.rows.rowCount(), 2);
        QCOMPARE(w.list.currentIndex().row(), 0);
        w.clickCell(1);
        QCOMPARE(w.doc().activeIndex(), 0);
        QCOMPARE(QApplication::focusWidget(), &w.canvas()); // a click takes no keys
        w.clickCell(0);
        QCOMPARE(w.doc().activeIndex(), 1);
        QCOMPARE(w.doc().undoDepth(), 0); // choosing is no step
        w.click("deleteLayer");
        QCOMPARE(w.names(), QStringList("Background"));
    }

    void aMarkIsAButtonForHandAndKeys() {
        for (const auto& [column, step, word] : {std::tuple{LayerColumn::eye, "Visibility", "hidden"},
                                                 {LayerColumn::lock, "Lock", "locked"},
                                                 {LayerColumn::alpha, "Alpha Lock", "alpha lock"},
                                                 {LayerColumn::clip, "Clipping", "clipped"}}) {
            LayersWindow w;
            const QString plain = "Layer 1, opacity 100%",
                          marked = QString("Layer 1, %1, opacity 100%").arg(word);
            QCOMPARE(w.spoken(0), plain);
            w.clickCell(0, column);
            QCOMPARE(w.spoken(0), marked);
            QCOMPARE(w.lastStep(), QString("1 ") + step);
            w.clickCell(1); // what is on can be pressed in any row, and chooses nothing
            w.clickCell(0, column);
            QCOMPARE(w.spoken(0), plain);
            QCOMPARE(w.doc().activeIndex(), 0);
            w.list.setFocus(Qt::TabFocusReason);
            QTest::keyClick(&w.list, Qt::Key_Up);
            QCOMPARE(w.doc().activeIndex(), 1);
            while (w.list.currentIndex().column() != static_cast<int>(column))
                QTest::keyClick(&w.list, column == LayerColumn::eye ? Qt::Key_Left : Qt::Key_Right);
            QTest::keyClick(&w.list, Qt::Key_Space);
            QCOMPARE(w.spoken(0), marked);
            QCOMPARE(w.list.currentIndex(), w.cell(0, column));
        }
    }

    /// Random edits: at any time the rows are the layers, a row that a view holds stays with its layer, and the list
    /// chooses no layer by itself, which a world without a window shows.
    void rowsFollowTheirLayersThroughAnyEdit() {
        OwnWorld plain;
        plain.model.pictures().newDocument(400, 300, 72, PaintColor::white(), "Test");
        LayersWindow w;
        for (OwnWorld* world : {&plain, static_cast<OwnWorld*>(&w)})
            world->model.pictures().newDocument(400, 300, 72, PaintColor::white(), "Other");
        const QAbstractItemModelTester tester(&w.rows, QAbstractItemModelTester::FailureReportingMode::Fatal);
        SeededRandom random(7);
        const auto below = [&](int64_t n) {
            return static_cast<int64_t>(random.unit() * static_cast<double>(n));
        };
        for (int i = 0; i < 160; ++i) {
            const int64_t count = w.doc().layerCount(), chosen = below(count), other = below(count),
                          kind = below(10);
            const QPersistentModelIndex row = w.rows.index(static_cast<int>(count - 1 - chosen), 0);
            const QUuid id = w.doc().layer(chosen).id;
            for (OwnWorld* world : {&plain, static_cast<OwnWorld*>(&w)}) {
                PaintModel& model = world->model;
                LayerEdits::setActiveLayer(model, chosen);
                void (*const edits[])(PaintModel&) = {LayerEdits::addLayer, LayerEdits::duplicateLayer,
                                                      LayerEdits::mergeDown, LayerEdits::deleteLayer,
                                                      i % 4 ? LayerEdits::addLayer : LayerEdits::flatten};
                if (kind < 5) edits[kind](model);
                if (kind == 5) LayerEdits::moveLayer(model, chosen, other);
                if (kind == 6) world->fill({i, i, 90, 80}, {static_cast<uint8_t>(i), 9, 0, 255});
                if (kind == 7) model.undo();
                if (kind == 8) model.redo();
                if (kind == 9)
                    model.pictures().select(*model.pictures().sessions()[static_cast<std::size_t>(i % 2)]);
                model.announce();
            }
            QCOMPARE(w.doc().activeIndex(), plain.doc().activeIndex());
            QCOMPARE(w.rows.rowCount(), static_cast<int>(w.doc().layerCount()));
            for (int64_t layer = 0; layer < w.doc().layerCount(); ++layer) {
                const QModelIndex index = w.rows.index(w.rows.rowOfLayer(layer), 0);
                QCOMPARE(w.rows.layer(index.row()).id, w.doc().layer(layer).id);
                QVERIFY(w.doc().layer(layer).id != id || !row.isValid() || row == index);
            }
            QCOMPARE(w.list.currentIndex().row(), w.rows.rowOfLayer(w.doc().activeIndex()));
        }
    }

    void thumbnailsAreOfTheLatestCommitAndWaitForAStroke() {
        LayersWindow w;
        const auto shown = [&] {
            w.rows.thumbnail(0, 32); // asks for what is not there
            BackgroundQueue::previews().finish();
            QCoreApplication::processEvents();
            return w.rows.thumbnail(0, 32);
        };
        const QImage empty = shown();
        paintRect(w.doc(), w.layer(), {0, 0, 400, 300}, {0, 255, 0, 255});
        w.model.announce();
        QCOMPARE(shown(), empty);
        w.doc().commit("Fill");
        w.model.announce();
        QCOMPARE(shown(), *thumbnailOf(w.doc().grid(), w.layer().tiles(), 32));
        w.model.undo();
        const QPoint middle = w.canvas().rect().center();
        QTest::mousePress(&w.canvas(), Qt::LeftButton, {}, middle);
        QVERIFY(BackgroundQueue::previews().isPaused());
        const auto began = std::make_shared<bool>(false);
        const auto job = BackgroundQueue::previews().run([began] { *began = true; });
        QVERIFY(job.wait_for(std::chrono::milliseconds(30)) == std::future_status::timeout && !*began);
        QTest::mouseRelease(&w.canvas(), Qt::LeftButton, {}, middle);
        job.wait();
        w.model.undo();
        QCOMPARE(shown(), empty);
    }

    void aThumbnailIsTheMeanOfWhatItCovers() {
        const auto doc = randomDocument(300, 260, 1, 3);
        const Layer& layer = doc->layer(0);
        const QImage image = *thumbnailOf(layer.grid(), layer.tiles(), 40);
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
        QVERIFY(thumbnailOf({30'000, 1}, TileArray(118), 40)->size() == QSize(40, 1));
        int rows = 0;
        QVERIFY(!thumbnailOf(layer.grid(), layer.tiles(), 40, [&] { return ++rows < 3; }));
    }

    void opacityIsLiveAndOneStep() {
        LayersWindow w;
        auto& slider = w.find<ChromeSlider>("layerOpacity");
        QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 2, 10});
        QVERIFY(qAbs(w.doc().activeLayer().opacity - 0.5) < 0.02);
        QCOMPARE(w.rows.layer(0).opacity, w.doc().activeLayer().opacity);
        QCOMPARE(w.doc().undoDepth(), 0);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10});
        QCOMPARE(w.lastStep(), "1 Layer Opacity");
        const double set = w.doc().activeLayer().opacity;
        QVERIFY(qAbs(set - 0.25) < 0.02);
        QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10}); // to where it is
        QCOMPARE(w.doc().undoDepth(), 1);
        // Undo before the keys have come to rest takes back the opacity, and nothing comes after it.
        w.paint();
        slider.setFocus();
        QTest::keyClick(&slider, Qt::Key_Up);
        w.click("headerUndo");
        QFocusEvent rest(QEvent::FocusOut);
        QApplication::sendEvent(&slider, &rest);
        QCOMPARE(w.doc().undoName(), "Brush Stroke");
        QCOMPARE(w.doc().redoName(), "Layer Opacity");
        w.model.undo();
        w.model.undo();
        QCOMPARE(slider.value(), 1.0);
    }

    void blendModeAndSwitchesAreTheActiveLayers() {
        LayersWindow w;
        auto& menu = w.find<QComboBox>("blendMode");
        QCOMPARE(menu.count(), kBlendModeCount);
        menu.setFocus();
        QTest::keyClick(&menu, Qt::Key_Down);
        QCOMPARE(w.doc().activeLayer().blendMode, BlendMode::multiply);
        QCOMPARE(w.lastStep(), "1 Blend Mode");
        w.find<ChromeToggle>("α Lock").click();
        QCOMPARE(w.lastStep(), "2 Alpha Lock");
        w.clickCell(1);
        QCOMPARE(menu.currentIndex(), 0);
        QVERIFY(!w.find<ChromeToggle>("α Lock").isChecked());
        QCOMPARE(w.doc().undoDepth(), 2);
    }

    void aDragMovesARowUnlessEscapeEndsIt() {
        LayersWindow w;
        for (int i = 0; i < 3; ++i) w.click("newLayer");
        const int steps = static_cast<int>(w.doc().undoDepth());
        const QUuid top = w.layer().id;
        const QPersistentModelIndex held = w.cell(0, LayerColumn::name);
        const auto drag = [&](int from, QPoint to, bool escape) {
            QTest::mousePress(w.list.viewport(), Qt::LeftButton, {}, w.place(from));
            QTest::mouseMove(w.list.viewport(), (w.place(from) + to) / 2);
            sendMouse(*w.list.viewport(), QEvent::MouseMove, to);
            if (escape) QTest::keyClick(&w.canvas(), Qt::Key_Escape);
            QTest::keyClick(&w.canvas(), Qt::Key_E); // means nothing now
            QTest::mouseRelease(w.list.viewport(), Qt::LeftButton, {}, to);
        };
        drag(0, w.place(2) + QPoint(0, 8), true);
        QCOMPARE(w.doc().undoDepth(), steps);
        w.model.setTool(Tool::brush);
        drag(0, w.place(2) + QPoint(0, 8), false);
        QCOMPARE(w.model.tool(), Tool::brush);
        QCOMPARE(w.doc().undoName(), "Reorder Layers");
        QCOMPARE(w.doc().indexOf(top), 2);
        QCOMPARE(w.doc().activeIndex(), 2);
        QCOMPARE(held.row(), 2);
        drag(2, w.place(1) - QPoint(0, 8), false);
        QCOMPARE(w.doc().indexOf(top), 3);
        drag(1, w.place(1) + QPoint(0, 12), false); // to where it is
        QCOMPARE(w.doc().undoDepth(), steps + 2);
        w.list.setFocus();
        QTest::keyClick(&w.list, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(w.doc().indexOf(top), 4);
        QCOMPARE(w.doc().undoName(), "Move Layer Up");
        QTest::keyClick(&w.list, Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(w.doc().indexOf(top), 3);
    }

    void aNameIsTypedInPlaceOrInASheet() {
        LayersWindow w;
        const auto typed = [&](const char* field, const QString& name) {
            auto& line = w.find<QLineEdit>(field);
            line.selectAll();
            QTest::keyClicks(&line, name);
            QTest::keyClick(&line, Qt::Key_Return);
            QCoreApplication::processEvents();
        };
        QTest::keyClick(&w.canvas(), Qt::Key_F2); // the keys are the canvas's, before and after
        typed("layerName", "Sky");
        QCOMPARE(w.lastStep(), "1 Rename Layer");
        QCOMPARE(QApplication::focusWidget(), &w.canvas());
        w.clickCell(1);
        QTest::mouseDClick(w.list.viewport(), Qt::LeftButton, {}, w.place(1));
        QCOMPARE(w.find<QLineEdit>("layerName").text(), "Background");
        QTest::keyClick(&w.find<QLineEdit>("layerName"), Qt::Key_Escape);
        QTest::mouseDClick(w.list.viewport(), Qt::LeftButton, {}, w.place(1));
        typed("layerName", "  ");
        QCOMPARE(w.names(), (QStringList{"Sky", "Background"}));
        w.model.showSheet({.kind = PaintSheet::Kind::renameLayer, .layer = w.doc().layer(0).id});
        typed("newLayerName", "Paper");
        QVERIFY(!w.model.sheet());
        QCOMPARE(w.names(), (QStringList{"Sky", "Paper"}));
        QCOMPARE(w.lastStep(), "2 Rename Layer");
    }

    void theMenuIsOfTheRowUnderThePointer() {
        LayersWindow w;
        const auto opened = [&](int row) {
            QContextMenuEvent ask(QContextMenuEvent::Mouse, w.place(row),
                                  w.list.viewport()->mapToGlobal(w.place(row)));
            QApplication::sendEvent(w.list.viewport(), &ask);
            return w.list.findChild<QMenu*>("layerMenu");
        };
        const auto choose = [](QMenu* menu, const char* item) {
            menu->findChild<QAction*>(item)->trigger();
            menu->close();
            QCoreApplication::sendPostedEvents(menu, QEvent::DeferredDelete);
        };
        choose(opened(1), "clip");
        QCOMPARE(w.doc().activeIndex(), 0);
        QVERIFY(w.doc().layer(0).isClipping);
        QMenu* menu = opened(1);
        QCOMPARE(menu->findChild<QAction*>("clip")->text(), "Release Clipping");
        choose(menu, "renameLayer");
        QCOMPARE(w.model.sheet()->layer, w.doc().layer(0).id);
        w.model.closeSheet();
        choose(opened(0), "duplicate");
        QCOMPARE(w.names(), (QStringList{"Layer 1 copy", "Layer 1", "Background"}));
    }

    void lettersAndDeleteInTheListAreTheCanvass() {
        LayersWindow w;
        w.fill({0, 0, 50, 50});
        w.list.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&w.list, Qt::Key_B); // as "Background" begins
        QTest::keyClick(&w.list, Qt::Key_E);
        QCOMPARE(w.doc().activeIndex(), 1);
        QCOMPARE(w.model.tool(), Tool::eraser);
        QTest::keyClick(&w.list, Qt::Key_Delete);
        QCOMPARE(w.doc().undoName(), "Clear");
        QTest::keyClick(&w.list, Qt::Key_End);
        QCOMPARE(w.doc().activeIndex(), 0);
    }

    void onionSkinIsOfTheViewAlone() {
        LayersWindow w;
        const auto& onion = w.doc().onion;
        w.find<ChromeToggle>("onionSkin").click();
        QVERIFY(onion.enabled && !w.shows<QWidget>("Layers below"));
        w.click("showOnion");
        QVERIFY(w.shows<QWidget>("Layers below"));
        for (int i = 0; i < 9; ++i) w.find<ChromeStepper>("Layers below").stepUp();
        for (int i = 0; i < 9; ++i) w.find<ChromeStepper>("Layers above").stepDown();
        w.find<ChromeSlider>("Ghost strength").enter(0.7);
        w.find<ChromeToggle>("Color ghosts (red below, green above)").click();
        QCOMPARE(std::tie(onion.before, onion.after, onion.opacity, onion.tint),
                 std::make_tuple(int64_t{5}, int64_t{0}, 0.7, false));
        QCOMPARE(w.doc().undoDepth(), 0);
        QCOMPARE(w.find<ChromeStepper>("Layers below").text(), "Layers below: 5");
    }
};

QIRN_TEST(tst_LayersPanel)
#include "tst_LayersPanel.moc"

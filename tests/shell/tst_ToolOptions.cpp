#include "BrushPresetMenu.h"
#include "ChromeSegments.h"
#include "ChromeSlider.h"
#include "ChromeToggle.h"
#include "ToolOptionsBar.h"
#include "Window.h"
#include "support/TestMain.h"

#include <set>

#include <algorithm>

#include <QLabel>
#include <QMenu>
#include <QPushButton>

using namespace qirn;
using namespace qirn::test;

class tst_ToolOptions : public QObject {
    Q_OBJECT

    static QStringList shownControls(Window& w) {
        static const QStringList known{"Brush preset",   "Size",         "Opacity",
                                       "Flow",           "Strength",     "Stabilizer",
                                       "Tolerance",      "Contiguous",   "Sample all layers",
                                       "Grow",           "Type",         "Color → transparent",
                                       "Shape",          "Fill",         "Outline",
                                       "Line width",     "Transform",    "Scale",
                                       "Rotate",         "Flip ↔",       "Apply (Return)",
                                       "Selection mode", "Smooth edges", "All",
                                       "None",           "Invert",       "Rotate view"};
        const auto& bar = w.find<ToolOptionsBar>();
        QStringList shown;
        for (const QString& name : known) {
            const auto named = bar.findChildren<QWidget*>(name);
            if (std::any_of(named.begin(), named.end(), [](QWidget* widget) { return widget->isVisible(); }))
                shown << name;
        }
        return shown;
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install(QStringLiteral("Qirn Paint")); }

    void eachToolHasItsOptions_data() {
        QTest::addColumn<Tool>("tool");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("controls");
        const QStringList painting{"Brush preset", "Size", "Opacity", "Flow", "Stabilizer"};
        const QStringList moving{"Brush preset", "Size", "Strength", "Stabilizer"};
        QTest::newRow("brush") << Tool::brush << "Brush" << painting;
        QTest::newRow("eraser") << Tool::eraser << "Eraser" << painting;
        QTest::newRow("smudge") << Tool::smudge << "Smudge" << moving;
        QTest::newRow("blur") << Tool::blur << "Blur" << moving;
        QTest::newRow("eyedropper") << Tool::eyedropper << "Eyedropper" << QStringList{"Sample all layers"};
        QTest::newRow("select") << Tool::selectRect << "Rectangle Select"
                                << QStringList{"Selection mode", "Smooth edges", "All", "None", "Invert"};
        QTest::newRow("bucket") << Tool::bucket << "Bucket Fill"
                                << QStringList{"Tolerance", "Contiguous", "Sample all layers", "Grow"};
        QTest::newRow("gradient") << Tool::gradient << "Gradient"
                                  << QStringList{"Opacity", "Type", "Color → transparent"};
        QTest::newRow("shape") << Tool::shape << "Shapes"
                               << QStringList{"Shape", "Fill", "Outline", "Line width"};
        QTest::newRow("move") << Tool::move << "Move & Transform" << QStringList{"Transform"};
        QTest::newRow("hand") << Tool::hand << "Hand (Pan)" << QStringList{"Rotate view"};
        QTest::newRow("zoom") << Tool::zoom << "Zoom" << QStringList{"Rotate view"};
    }
    void eachToolHasItsOptions() {
        QFETCH(Tool, tool);
        Window w;
        w.model.setTool(tool);
        QTEST(w.find<QLabel>("toolTitle").text(), "title");
        QTEST(shownControls(w), "controls");
    }

    void liftedPixelsHaveTheirOwnOptions() {
        Window w;
        w.paint();
        w.model.beginTransform();
        QCOMPARE(shownControls(w), (QStringList{"Scale", "Rotate", "Flip ↔", "Apply (Return)"}));
        w.find<ChromeSlider>("Scale").setFocus();
        w.model.updateTransform([](TransformState& state) { state.scaleX = state.scaleY = 2; });
        QCOMPARE(w.find<ChromeSlider>("Scale").value(), 2.0);
        w.model.updateTransform([](TransformState& state) { state.angle = 270; });
        QCOMPARE(w.find<ChromeSlider>("Rotate").value(), -90.0);
        w.click("Flip ↔");
        QVERIFY(w.model.transform()->flipH);
        w.model.setTool(Tool::bucket);
        QVERIFY(!w.model.transform());
        QCOMPARE(w.model.current()->doc().undoName(), QStringLiteral("Transform"));
    }

    void aSliderSetsTheBrushOfItsTool() {
        Window w;
        const double pen = w.model.activeBrush().opacity;
        w.model.setTool(Tool::eraser);
        dragOver(w.find<ChromeSlider>("Opacity"), {0.2, 0.5}, {0.5, 0.5});
        QCOMPARE(w.model.activeBrush().opacity, 0.5);
        w.model.setTool(Tool::brush);
        QCOMPARE(w.model.activeBrush().opacity, pen);
        QCOMPARE(w.find<ChromeSlider>("Opacity").value(), pen);
    }

    void aBrushLargerThanTheSliderShowsItsEndAndKeepsItsSize() {
        Window w;
        auto& size = w.find<ChromeSlider>("Size");
        size.enter(400);
        QTest::keyClick(&w.canvas(), Qt::Key_BracketRight, {});
        const double grown = w.model.activeBrush().size;
        QVERIFY(grown > 400);
        QCOMPARE(size.valueText(), QStringLiteral("400 px"));
        w.model.announce();
        QCOMPARE(w.model.activeBrush().size, grown);
        QTest::keyClick(&w.canvas(), Qt::Key_BracketLeft, {});
        size.enter(20);
        QCOMPARE(w.model.activeBrush().size, 20.0);
    }

    void thePresetMenuGroupsTheToolsBrushesAndChoosesOne() {
        Window w;
        auto& button = w.find<BrushPresetMenu>();
        QCOMPARE(button.text(), w.model.activeBrush().name);
        Q_EMIT button.menu()->aboutToShow();
        QStringList categories, names;
        QAction* charcoal = nullptr;
        for (QAction* group : button.menu()->actions()) {
            QVERIFY(group->menu());
            categories << group->text();
            for (QAction* brush : group->menu()->actions()) {
                names << brush->text();
                QCOMPARE(brush->isChecked(), brush->text() == QStringLiteral("Studio Pen"));
                if (brush->text() == QStringLiteral("Charcoal")) charcoal = brush;
            }
        }
        QStringList expected;
        for (const BrushSettings& brush : w.model.brushesFor(Tool::brush)) expected << brush.name;
        QCOMPARE(names.size(), expected.size());
        QCOMPARE(std::set<QString>(categories.begin(), categories.end()).size(),
                 std::size_t(categories.size()));
        QVERIFY(charcoal);
        charcoal->trigger();
        QCOMPARE(w.model.activeBrush().name, QStringLiteral("Charcoal"));
        QCOMPARE(button.text(), QStringLiteral("Charcoal"));
        w.model.setTool(Tool::eraser);
        Q_EMIT button.menu()->aboutToShow();
        QVERIFY(!button.menu()->actions().isEmpty());
        QVERIFY(!button.menu()->actions().front()->menu()); // one category only
    }

    void selectionOptionsReachTheModel() {
        Window w;
        w.model.setTool(Tool::selectRect);
        auto& mode = w.find<ChromeSegments>("Selection mode");
        for (auto* part : mode.findChildren<QAbstractButton*>())
            if (part->accessibleName().endsWith(QStringLiteral("Subtract")))
                QTest::mouseClick(part, Qt::LeftButton);
        QCOMPARE(w.model.options().selectionMode, SelectionOp::subtract);
        ToolOptions options = w.model.options();
        options.selectionMode = SelectionOp::intersect;
        w.model.setOptions(options);
        QCOMPARE(mode.chosen(), 3);
        w.click("Smooth edges");
        QVERIFY(!w.model.options().selectionAntialias);
        w.click("All");
        QVERIFY(w.doc().selection);
        w.click("None");
        QVERIFY(!w.doc().selection);
    }

    void theEyedropperOptionIsAPreference() {
        Window w;
        w.model.setTool(Tool::eyedropper);
        QVERIFY(w.find<ChromeToggle>("Sample all layers").isChecked());
        w.click("Sample all layers");
        QVERIFY(!w.model.prefs().eyedropperAllLayers);
    }

    void viewOptionsActOnTheCanvas() {
        Window w;
        w.model.setTool(Tool::hand);
        w.click("actualPixels");
        QCOMPARE(w.find<QLabel>("zoomValue").text(), QStringLiteral("100%"));
        w.click("zoomIn");
        QVERIFY(w.session().view.zoom > 1);
        w.click("zoomOut");
        QCOMPARE(w.session().view.zoom, 1.0);
        w.find<ChromeSlider>("Rotate view").enter(45);
        QCOMPARE(w.session().view.rotation, 45.0);
        w.canvas().setRotation(-90);
        QCOMPARE(w.find<ChromeSlider>("Rotate view").value(), -90.0);
        w.click("resetRotation");
        QCOMPARE(w.session().view.rotation, 0.0);
        auto& flip = w.find<QPushButton>("flipView");
        QCOMPARE(flip.text(), QStringLiteral("Flip view (W)"));
        w.click("flipView");
        QVERIFY(w.session().view.flipView);
        QCOMPARE(flip.text(), QStringLiteral("Unflip view (W)"));
        w.click("fitView");
        QVERIFY(w.session().view.zoom > 1); // a small picture in a large window
    }
};

QIRN_TEST(tst_ToolOptions)
#include "tst_ToolOptions.moc"

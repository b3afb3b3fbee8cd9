#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeToggle.h"
#include "shell/options/BrushPresetMenu.h"
#include "shell/options/ToolOptionsBar.h"
#include "support/Window.h"

#include <QLabel>
#include <QMenu>
#include <QPushButton>

using namespace qirn;
using namespace qirn::test;

class tst_ToolOptions : public QObject {
    Q_OBJECT

    /// Of the bar's middle, from the left.
    static QString shownControls(Window& w) {
        QStringList shown;
        for (const QWidget* control : w.find<ToolOptionsBar>().findChildren<QWidget*>())
            if (control->isVisible() && control->focusPolicy() != Qt::NoFocus) shown << control->objectName();
        shown.removeOne("toolHelp");
        shown.removeOne("qt_spinbox_lineedit"); // a part of its control
        return shown.join(", ");
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void eachToolHasItsOptions() {
        Window w;
        constexpr auto kView = "Rotate view, zoomOut, zoomIn, fitView, actualPixels, resetRotation, flipView";
        const std::tuple<Tool, const char*, const char*> cases[] = {
            {Tool::brush, "Brush", "Brush preset, Size, Opacity, Flow, Stabilizer"},
            {Tool::eraser, "Eraser", "Brush preset, Size, Opacity, Flow, Stabilizer"},
            {Tool::smudge, "Smudge", "Brush preset, Size, Strength, Stabilizer"},
            {Tool::blur, "Blur", "Brush preset, Size, Strength, Stabilizer"},
            {Tool::eyedropper, "Eyedropper", "Sample all layers 2"},
            {Tool::selectRect, "Rectangle Select",
             "Selection mode New, Selection mode Add, Selection mode Subtract, Selection mode Intersect, "
             "Smooth edges, All, None, Invert"},
            {Tool::bucket, "Bucket Fill", "Tolerance, Contiguous, Sample all layers, Grow"},
            {Tool::gradient, "Gradient",
             "Type Linear, Type Radial, Type Reflected, Color → transparent, Opacity 2"},
            {Tool::shape, "Shapes", "Shape, Fill, Outline, Line width"},
            {Tool::move, "Move & Transform", "Transform"},
            {Tool::hand, "Hand (Pan)", kView},
            {Tool::zoom, "Zoom", kView}};
        const QRect titleRect = w.find<QLabel>("toolTitle").geometry();
        for (const auto& [tool, title, controls] : cases) {
            w.model.setTool(tool);
            QCoreApplication::processEvents();
            QCOMPARE(w.find<QLabel>("toolTitle").geometry(), titleRect); // the options stay where they are
            QVERIFY(w.find<QLabel>("toolTitle").sizeHint().width() <= titleRect.width());
            QCOMPARE(w.find<QLabel>("toolTitle").text(), title);
            QCOMPARE(shownControls(w), controls);
        }
    }

    void liftedPixelsHaveTheirOwnOptions() {
        Window w;
        w.paint();
        w.model.transform().beginTransform();
        QCOMPARE(shownControls(w), "Scale, Rotate, Flip ↔, Flip ↕, Apply (Return), Cancel (Esc)");
        w.find<ChromeSlider>("Scale").setFocus();
        w.model.transform().updateTransform([](TransformState& state) {
            state.scaleX = state.scaleY = 2;
            state.angle = 270;
        });
        QCOMPARE(w.find<ChromeSlider>("Scale").value(), 2.0);
        QCOMPARE(w.find<ChromeSlider>("Rotate").value(), -90.0);
        w.click("Flip ↔");
        QVERIFY(w.model.transform().state()->flipH);
        w.model.setTool(Tool::bucket);
        QVERIFY(!w.model.transform().state());
        QCOMPARE(w.doc().undoName(), "Transform");
    }

    void aSliderSetsTheBrushOfItsToolAndKeepsALargerSize() {
        Window w;
        const double pen = w.model.brushes().activeBrush().opacity;
        w.model.setTool(Tool::eraser);
        dragOver(w.find<ChromeSlider>("Opacity"), {0.2, 0.5}, {0.5, 0.5});
        QCOMPARE(w.model.brushes().activeBrush().opacity, 0.5);
        w.model.setTool(Tool::brush);
        QCOMPARE(w.model.brushes().activeBrush().opacity, pen);
        QCOMPARE(w.find<ChromeSlider>("Opacity").value(), pen);
        auto& size = w.find<ChromeSlider>("Size");
        size.enter(400);
        QTest::keyClick(&w.canvas(), Qt::Key_BracketRight, {});
        const double grown = w.model.brushes().activeBrush().size;
        QVERIFY(grown > 400);
        QCOMPARE(size.valueText(), QStringLiteral("%1 px").arg(grown));
        w.model.announce();
        QCOMPARE(w.model.brushes().activeBrush().size, grown);
        size.enter(20);
        QCOMPARE(w.model.brushes().activeBrush().size, 20.0);
    }

    void thePresetMenuGroupsTheToolsBrushesAndChoosesOne() {
        Window w;
        auto& button = w.find<BrushPresetMenu>();
        QCOMPARE(button.text(), w.model.brushes().activeBrush().name);
        Q_EMIT button.menu()->aboutToShow();
        QSet<QString> categories;
        qsizetype brushes = 0;
        QAction* charcoal = nullptr;
        for (QAction* group : button.menu()->actions()) {
            QVERIFY(group->menu());
            categories << group->text();
            for (QAction* brush : group->menu()->actions()) {
                ++brushes;
                QCOMPARE(brush->isChecked(), brush->text() == "Studio Pen");
                QVERIFY(!brush->icon().isNull()); // its preview
                if (brush->text() == "Charcoal") charcoal = brush;
            }
        }
        QCOMPARE(brushes, w.model.brushes().brushesFor(Tool::brush).size());
        QCOMPARE(categories.size(), button.menu()->actions().size());
        QVERIFY(charcoal);
        charcoal->trigger();
        QCOMPARE(w.model.brushes().activeBrush().name, "Charcoal");
        QCOMPARE(button.text(), "Charcoal");
        w.model.setTool(Tool::eraser);
        Q_EMIT button.menu()->aboutToShow();
        QVERIFY(!button.menu()->actions().isEmpty());
        QVERIFY(!button.menu()->actions().front()->menu()); // one category only
    }

    void optionsReachTheModelAndBack() {
        Window w;
        w.model.setTool(Tool::selectRect);
        auto& mode = w.find<ChromeSegments>("Selection mode");
        for (auto* part : mode.findChildren<QAbstractButton*>())
            if (part->accessibleName().endsWith("Subtract")) QTest::mouseClick(part, Qt::LeftButton);
        QCOMPARE(w.model.options().selectionMode, SelectionOp::subtract);
        w.set(&ToolOptions::selectionMode, SelectionOp::intersect);
        QCOMPARE(mode.chosen(), 3);
        w.click("Smooth edges");
        QVERIFY(!w.model.options().selectionAntialias);
        w.click("All");
        QVERIFY(w.doc().selection);
        w.click("None");
        QVERIFY(!w.doc().selection);
        w.model.setTool(Tool::eyedropper);
        QVERIFY(w.find<ChromeToggle>("Sample all layers 2").isChecked());
        w.click("Sample all layers 2");
        QVERIFY(!w.model.prefs().eyedropperAllLayers);
    }

    void viewOptionsActOnTheCanvas() {
        Window w;
        w.model.setTool(Tool::hand);
        w.click("actualPixels");
        QCOMPARE(w.find<QLabel>("zoomValue").text(), "100%");
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
        QCOMPARE(flip.text(), "Flip view (W)");
        w.click("flipView");
        QVERIFY(w.session().view.flipView);
        QCOMPARE(flip.text(), "Unflip view (W)");
        w.click("fitView");
        QVERIFY(w.session().view.zoom > 1); // a small picture in a large window
    }
};

QIRN_TEST(tst_ToolOptions)
#include "tst_ToolOptions.moc"

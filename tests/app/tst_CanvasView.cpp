#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "support/PenRecording.h"
#include "support/Pictures.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <cmath>
#include <numeric>
#include <set>

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QWheelEvent>

using namespace qirn;
using namespace qirn::test;

namespace {

BrushSettings preset(const char* name) {
    return *BrushLibrary::named(QLatin1String(name));
}

/// A hard dot of a few pixels, the same at any pressure.
BrushSettings dot(double size = 6) {
    BrushSettings brush(QStringLiteral("Dot"), QStringLiteral("Test"), BrushKind::paint);
    brush.size = size;
    brush.hardness = 1;
    brush.pressureSize = false;
    return brush;
}

/// Notes what a widget is asked to paint, and can keep its resizes from it.
class PaintWatcher : public QObject {
public:
    explicit PaintWatcher(QWidget& widget) { widget.installEventFilter(this); }
    QRegion region;
    int paints = 0;
    bool hidesResizes = false;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            region += static_cast<QPaintEvent*>(event)->region();
            ++paints;
        }
        return hidesResizes && event->type() == QEvent::Resize;
    }
};

} // namespace

class tst_CanvasView : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aStrokeLandsUnderThePen_data();
    void aStrokeLandsUnderThePen();
    void whatIsShownLiesUnderThePen();
    void penAndEnginePaintTheSamePicture_data();
    void penAndEnginePaintTheSamePicture();
    void pressureReachesTheBrush();
    void oneStrokeIsOneUndoStep_data();
    void oneStrokeIsOneUndoStep();
    void aMouseThatFollowsAPenPaintsNothing();
    void theEraserEndErasesAndGivesTheToolBack_data();
    void theEraserEndErasesAndGivesTheToolBack();
    void lockedAndHiddenLayersRefuseInWords();
    void aLostReleaseEndsTheGesture_data();
    void aLostReleaseEndsTheGesture();
    void aMouseLineBeginsAsThinAsItIsFast();
    void undoDuringAStrokeTakesTheStrokeBack();
    void escapeDropsTheStroke();
    void shiftClickDrawsAStraightLine();
    void optionOrCommandPicksAColour();
    void heldAirbrushKeepsPainting();
    void aStrokeRepaintsOnlyItsOwnRegionOnceAPoint();
    void theViewFollowsItsSize();
    void rectanglesAreSelected_data();
    void rectanglesAreSelected();
    void aClickRemovesTheSelection();
    void keysDoWhatTheyDo();
    void wheelZoomsAroundThePointer();
    void theStatusFollowsThePen();
};

void tst_CanvasView::aStrokeLandsUnderThePen_data() {
    QTest::addColumn<double>("zoom");
    QTest::addColumn<double>("rotation");
    QTest::addColumn<bool>("flip");
    QTest::newRow("plain") << 1.0 << 0.0 << false;
    QTest::newRow("turned, mirrored, zoomed") << 1.7 << 37.0 << true;
    QTest::newRow("far out") << 0.1 << -90.0 << false;
    QTest::newRow("close up") << 32.0 << 12.0 << true;
}

void tst_CanvasView::aStrokeLandsUnderThePen() {
    QFETCH(double, zoom);
    QFETCH(double, rotation);
    QFETCH(bool, flip);
    Studio studio;
    studio.model.setActiveBrush(dot());
    studio.canvas.setZoom(zoom);
    studio.canvas.setRotation(rotation);
    if (flip) studio.canvas.toggleFlipView();
    const QPointF place(201.5, 148.5);
    studio.penStroke({place});
    const auto bounds = studio.layer().contentBounds();
    QVERIFY(bounds.has_value());
    QVERIFY2(std::abs(bounds->x + bounds->w / 2.0 - place.x()) <= 0.75 &&
                 std::abs(bounds->y + bounds->h / 2.0 - place.y()) <= 0.75,
             qPrintable(bounds->description()));
}

void tst_CanvasView::whatIsShownLiesUnderThePen() {
    Studio studio;
    studio.model.setActiveBrush(dot(20));
    studio.model.setPrimary(PaintColor(1, 0, 0));
    studio.canvas.setZoom(1.4);
    studio.canvas.setRotation(30);
    const QPointF place(120, 90);
    studio.penStroke({place});
    const QPoint at = studio.widgetPoint(place).toPoint();
    studio.canvas.toolDidChange();
    studio.pointerLeaves();
    const QImage shown = studio.canvas.grab().toImage();
    QCOMPARE(shown.pixelColor(at), QColor(255, 0, 0));
    QCOMPARE(shown.pixelColor(at + QPoint(30, 0)), QColor(255, 255, 255));
}

void tst_CanvasView::penAndEnginePaintTheSamePicture_data() {
    QTest::addColumn<QString>("brush");
    QTest::addColumn<std::vector<std::vector<StrokePoint>>>("strokes");
    for (const char* name : {"Studio Pen", "Charcoal", "Spray Can", "Smudge"}) {
        QTest::addRow("%s, synthetic hand", name) << QString::fromLatin1(name) << syntheticHand();
    }
    // A real hand where a recording lies on this machine, as it is and scaled up.
    for (const double scale : {1.0, 2.0}) {
        if (const auto hand = recordedHand(scale)) {
            QTest::addRow("Ink Brush, recorded hand x %g", scale) << QStringLiteral("Ink Brush") << *hand;
        }
    }
}

void tst_CanvasView::penAndEnginePaintTheSamePicture() {
    QFETCH(QString, brush);
    QFETCH(std::vector<std::vector<StrokePoint>>, strokes);
    Studio studio;
    studio.model.newDocument(1200, 900, 72, PaintColor::white(), QStringLiteral("Hand"));
    studio.canvas.actualPixels();
    studio.model.choose(*BrushLibrary::named(brush));
    // A spray burst between two events comes from a timer; the engine's strokes have none.
    BrushSettings settings = studio.model.activeBrush();
    settings.airbrush = false;
    studio.model.setActiveBrush(settings);
    PaintDocument direct(1200, 900, 72, PaintColor::white());
    for (const std::vector<StrokePoint>& stroke : strokes) {
        studio.penEvent(QEvent::TabletPress, {stroke[0].x, stroke[0].y}, stroke[0].pressure);
        for (std::size_t i = 1; i < stroke.size(); ++i) {
            studio.penEvent(QEvent::TabletMove, {stroke[i].x, stroke[i].y}, stroke[i].pressure);
        }
        studio.penEvent(QEvent::TabletRelease, {stroke.back().x, stroke.back().y}, 0);
        paintStroke(direct, stroke, settings, studio.model.primary(), nullptr, 1);
    }
    QCOMPARE(firstDifference(*studio.layer().toBuffer(), *direct.activeLayer().toBuffer()), QString());
    QVERIFY(brush == QLatin1String("Smudge") || !direct.activeLayer().isEmpty());
}

void tst_CanvasView::pressureReachesTheBrush() {
    const auto heightAt = [](double pressure, double curve) {
        Studio studio;
        PaintPrefs prefs = studio.model.prefs();
        prefs.pressureCurve = curve;
        studio.model.setPrefs(prefs);
        BrushSettings brush = dot(40);
        brush.pressureSize = true;
        brush.minSize = 0;
        studio.model.setActiveBrush(brush);
        studio.penStroke({{200, 150}}, pressure);
        return studio.layer().contentBounds()->h;
    };
    QVERIFY(heightAt(0.25, 1) <= 12 && heightAt(0.25, 1) >= 9);
    QVERIFY(heightAt(1, 1) >= 39);
    QVERIFY(heightAt(0.25, 0.5) >= 19); // a soft touch
}

void tst_CanvasView::oneStrokeIsOneUndoStep_data() {
    QTest::addColumn<int>("tool");
    QTest::addColumn<QString>("name");
    QTest::newRow("brush") << int(Tool::brush) << "Brush Stroke";
    QTest::newRow("eraser") << int(Tool::eraser) << "Erase";
    QTest::newRow("smudge") << int(Tool::smudge) << "Smudge";
    QTest::newRow("blur") << int(Tool::blur) << "Blur";
}

void tst_CanvasView::oneStrokeIsOneUndoStep() {
    QFETCH(int, tool);
    QFETCH(QString, name);
    Studio studio;
    studio.model.setTool(static_cast<Tool>(tool));
    studio.penStroke({{50, 50}, {100, 80}, {160, 60}, {220, 140}});
    QCOMPARE(studio.doc().undoDepth(), int64_t{1});
    QCOMPARE(studio.doc().undoName(), name);
    QVERIFY(studio.session().isDirty());
    QVERIFY(
        studio.model.status().lastStrokeStats()->startsWith(QStringLiteral("Last stroke: 5 points, avg ")));
}

void tst_CanvasView::aMouseThatFollowsAPenPaintsNothing() {
    Studio studio;
    studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
    studio.mouseEvent(QEvent::MouseButtonPress, {50, 50});
    studio.penEvent(QEvent::TabletMove, {90, 50}, 1);
    studio.mouseEvent(QEvent::MouseMove, {90, 50});
    studio.penEvent(QEvent::TabletRelease, {90, 50}, 0);
    studio.mouseEvent(QEvent::MouseButtonRelease, {90, 50});
    studio.mouseDrag({90, 50}, {91, 50});
    QCOMPARE(studio.doc().undoDepth(), int64_t{1});
    studio.waitForPenEcho();
    studio.mouseDrag({100, 100}, {150, 100});
    QCOMPARE(studio.doc().undoDepth(), int64_t{2});
}

void tst_CanvasView::theEraserEndErasesAndGivesTheToolBack_data() {
    QTest::addColumn<bool>("proximity");
    QTest::addColumn<bool>("turnedOff");
    QTest::newRow("told by proximity") << true << false;
    QTest::newRow("told by the events alone") << false << false;
    QTest::newRow("turned off while it is near") << false << true;
}

void tst_CanvasView::theEraserEndErasesAndGivesTheToolBack() {
    QFETCH(bool, proximity);
    QFETCH(bool, turnedOff);
    Studio studio;
    const auto setEraserEnd = [&](bool on) {
        PaintPrefs prefs = studio.model.prefs();
        prefs.tabletEraserSwitches = on;
        studio.model.setPrefs(prefs);
    };
    studio.model.setActiveBrush(dot(30));
    studio.penStroke({{100, 100}});
    const auto near = [&](QEvent::Type type, bool eraser) {
        const QPointingDevice device(QStringLiteral("p"), 7, QInputDevice::DeviceType::Stylus,
                                     eraser ? QPointingDevice::PointerType::Eraser
                                            : QPointingDevice::PointerType::Pen,
                                     QInputDevice::Capability::Position, 1, 1);
        QTabletEvent event(type, &device, {}, {}, 0, 0, 0, 0, 0, 0, {}, Qt::NoButton, Qt::NoButton);
        QApplication::sendEvent(qApp, &event);
    };
    if (proximity)
        near(QEvent::TabletEnterProximity, true);
    else
        studio.penEvent(QEvent::TabletMove, {100, 100}, 0, true);
    QCOMPARE(studio.model.tool(), Tool::eraser);
    studio.penEvent(QEvent::TabletPress, {100, 100}, 1, true);
    studio.penEvent(QEvent::TabletRelease, {100, 100}, 0, true);
    QCOMPARE(studio.layer().pixel(100, 100)[3], uint8_t{0});
    QCOMPARE(studio.doc().undoName(), QStringLiteral("Erase"));
    if (proximity)
        near(QEvent::TabletLeaveProximity, true);
    else if (turnedOff)
        setEraserEnd(false);
    else
        studio.penEvent(QEvent::TabletMove, {100, 100}, 0, false);
    QCOMPARE(studio.model.tool(), Tool::brush);
    QVERIFY(!studio.model.penIsEraser);
    if (!turnedOff) return;
    studio.penEvent(QEvent::TabletMove, {100, 100}, 0, true);
    QVERIFY(!studio.model.penIsEraser);
}

void tst_CanvasView::lockedAndHiddenLayersRefuseInWords() {
    Studio studio;
    studio.model.toggleLock();
    const int64_t steps = studio.doc().undoDepth();
    studio.penStroke({{50, 50}, {90, 90}});
    QCOMPARE(studio.model.hud(),
             QStringLiteral("The layer \"Layer 1\" is locked — unlock it in the Layers panel"));
    studio.model.toggleLock();
    studio.model.toggleVisibility();
    studio.penStroke({{50, 50}, {90, 90}});
    QCOMPARE(studio.model.hud(), QStringLiteral("The layer \"Layer 1\" is hidden — show it to paint on it"));
    QVERIFY(studio.layer().isEmpty());
    QCOMPARE(studio.doc().undoDepth(), steps + 2);
    QVERIFY(!studio.canvas.isBusy());
}

void tst_CanvasView::aLostReleaseEndsTheGesture_data() {
    QTest::addColumn<Tool>("tool");
    QTest::addColumn<bool>("pen");
    for (const bool pen : {true, false}) {
        QTest::addRow("stroke, %s", pen ? "pen" : "mouse") << Tool::brush << pen;
        QTest::addRow("shape, %s", pen ? "pen" : "mouse") << Tool::shape << pen;
        QTest::addRow("selection, %s", pen ? "pen" : "mouse") << Tool::selectRect << pen;
    }
}

void tst_CanvasView::aLostReleaseEndsTheGesture() {
    QFETCH(Tool, tool);
    QFETCH(bool, pen);
    // What comes in place of the release; of the moves that still come of that hand nothing is drawn.
    void (*const ends[])(Studio&) = {
        [](Studio& s) {
            QFocusEvent out(QEvent::FocusOut);
            QApplication::sendEvent(&s.canvas, &out);
        },
        [](Studio& s) {
            QEvent out(QEvent::WindowDeactivate);
            QApplication::sendEvent(&s.canvas, &out);
        },
        [](Studio& s) { s.model.copy(Merged::no); },
    };
    for (const auto& end : ends) {
        Studio studio;
        studio.model.setTool(tool);
        const auto send = [&](QEvent::Type penType, QEvent::Type mouseType, QPointF at) {
            pen ? studio.penEvent(penType, at, 1) : studio.mouseEvent(mouseType, at);
        };
        const auto dragged = [&](QPointF from, QPointF to) {
            send(QEvent::TabletPress, QEvent::MouseButtonPress, from);
            send(QEvent::TabletMove, QEvent::MouseMove, to);
            return studio.doc().undoDepth();
        };
        QCOMPARE(dragged({50, 50}, {90, 80}), int64_t{0});
        end(studio);
        QCOMPARE(studio.doc().undoDepth(), int64_t{1});
        const uint64_t print = studio.doc().fingerprint();
        send(QEvent::TabletMove, QEvent::MouseMove, {150, 150});
        send(QEvent::TabletRelease, QEvent::MouseButtonRelease, {150, 150});
        QCOMPARE(studio.doc().fingerprint(), print);
        QCOMPARE(dragged({50, 100}, {90, 130}), int64_t{1});
        QCOMPARE(dragged({100, 100}, {130, 140}), int64_t{2}); // another press, without a release before it
        send(QEvent::TabletRelease, QEvent::MouseButtonRelease, {130, 140});
        QCOMPARE(studio.doc().undoDepth(), int64_t{3});
        if (!pen || &end != &ends[0]) continue;
        dragged({10, 10}, {40, 40});
        studio.waitForPenEcho();
        studio.mouseDrag({150, 20}, {190, 60}); // the pen lies on the table
        QCOMPARE(studio.doc().undoDepth(), int64_t{5});
    }
}

void tst_CanvasView::aMouseLineBeginsAsThinAsItIsFast() {
    const auto heightAt = [](double way, double time, double x) {
        Studio studio;
        PaintPrefs prefs = studio.model.prefs();
        prefs.mouseSpeedPressure = true;
        studio.model.setPrefs(prefs);
        BrushSettings brush = dot(40);
        brush.pressureSize = true;
        brush.minSize = 0;
        studio.model.setActiveBrush(brush);
        const auto send = [&](QEvent::Type type, double at, uint64_t milliseconds) {
            const QPointF place = studio.widgetPoint({at, 150});
            const bool up = type == QEvent::MouseButtonRelease;
            QMouseEvent event(type, place, studio.canvas.mapToGlobal(place),
                              type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                              up ? Qt::NoButton : Qt::LeftButton, {});
            event.setTimestamp(milliseconds);
            QApplication::sendEvent(&studio.canvas, &event);
        };
        send(QEvent::MouseButtonPress, 100, 1000);
        if (x > 100) send(QEvent::MouseMove, 100 + way, 1000 + static_cast<uint64_t>(time));
        send(QEvent::MouseButtonRelease, 100 + way, 1000 + static_cast<uint64_t>(time));
        int64_t height = 0;
        for (int64_t y = 0; y < 300; ++y) height += studio.layer().pixel(static_cast<int64_t>(x), y)[3] > 127;
        return height;
    };
    for (const double x : {100, 150}) { // begun and going on
        QVERIFY(std::abs(heightAt(100, 40, x) - 8) <= 1);
        QVERIFY(std::abs(heightAt(100, 100, x) - 32) <= 1);
    }
    QVERIFY(std::abs(heightAt(0, 500, 100) - 40) <= 1); // a click
}

void tst_CanvasView::undoDuringAStrokeTakesTheStrokeBack() {
    Studio studio;
    const uint64_t print = studio.doc().fingerprint();
    studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
    studio.penEvent(QEvent::TabletMove, {120, 50}, 1);
    studio.model.undo();
    QCOMPARE(studio.doc().fingerprint(), print);
    studio.penEvent(QEvent::TabletMove, {220, 50}, 1);
    studio.penEvent(QEvent::TabletRelease, {220, 50}, 0);
    QCOMPARE(studio.doc().fingerprint(), print);
    studio.model.redo();
    QVERIFY(studio.doc().fingerprint() != print);
}

void tst_CanvasView::escapeDropsTheStroke() {
    Studio studio;
    const uint64_t print = studio.doc().fingerprint();
    studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
    studio.penEvent(QEvent::TabletMove, {120, 50}, 1);
    studio.key(Qt::Key_Escape);
    studio.penEvent(QEvent::TabletRelease, {120, 50}, 0);
    QCOMPARE(studio.doc().fingerprint(), print);
    QCOMPARE(studio.doc().undoDepth(), int64_t{0});
}

void tst_CanvasView::shiftClickDrawsAStraightLine() {
    Studio studio;
    studio.model.setActiveBrush(dot(8));
    studio.penStroke({{40, 40}});
    QCOMPARE(studio.layer().pixel(140, 40)[3], uint8_t{0});
    studio.penEvent(QEvent::TabletPress, {240, 40}, 1, false, Qt::ShiftModifier);
    studio.penEvent(QEvent::TabletRelease, {240, 40}, 0);
    for (int x = 40; x <= 240; x += 5) QCOMPARE(studio.layer().pixel(x, 40)[3], uint8_t{255});
    QCOMPARE(studio.doc().undoDepth(), int64_t{2});
}

void tst_CanvasView::optionOrCommandPicksAColour() {
    Studio studio;
    paintRect(studio.doc(), studio.layer(), {10, 10, 20, 20}, {0, 128, 0, 128});
    for (const auto modifier : {Qt::AltModifier, Qt::ControlModifier}) {
        studio.model.setPrimary(PaintColor::black());
        studio.penEvent(QEvent::TabletPress, {15, 15}, 1, false, modifier);
        studio.penEvent(QEvent::TabletRelease, {15, 15}, 0);
        QCOMPARE(studio.model.primary().hex(), QStringLiteral("#7FFF7F")); // over the white paper
        QCOMPARE(studio.model.recent().front(), studio.model.primary());
    }
    PaintPrefs prefs = studio.model.prefs();
    prefs.eyedropperAllLayers = false;
    studio.model.setPrefs(prefs);
    studio.model.setTool(Tool::eyedropper);
    studio.waitForPenEcho();
    studio.mouseDrag({15, 15}, {15, 15});
    QCOMPARE(studio.model.primary().hex(), QStringLiteral("#00FF00"));
    studio.mouseDrag({100, 100}, {100, 100});
    QCOMPARE(studio.model.hud(), QStringLiteral("Nothing to pick there (transparent)"));
    QCOMPARE(studio.doc().undoDepth(), int64_t{0});
}

void tst_CanvasView::heldAirbrushKeepsPainting() {
    Studio studio;
    studio.model.choose(preset("Airbrush Soft"));
    studio.penEvent(QEvent::TabletPress, {100, 100}, 1);
    const uint8_t first = studio.layer().pixel(100, 100)[3];
    QTRY_VERIFY(studio.layer().pixel(100, 100)[3] > first);
    studio.penEvent(QEvent::TabletRelease, {100, 100}, 0);
}

void tst_CanvasView::aStrokeRepaintsOnlyItsOwnRegionOnceAPoint() {
    Studio studio;
    studio.model.newDocument(3840, 2160, 72, PaintColor::white(), QStringLiteral("4K"));
    QCoreApplication::processEvents();
    studio.model.setActiveBrush(dot(20));
    const QPointF from(1000, 1000), to(1100, 1050);
    PaintWatcher watcher(studio.canvas);
    studio.penEvent(QEvent::TabletPress, from, 1);
    for (const QPointF& point : {QPointF(1030, 1010), QPointF(1050, 1020), to}) {
        QApplication::processEvents();
        watcher.paints = 0;
        studio.penEvent(QEvent::TabletMove, point, 1);
        QCOMPARE(watcher.paints, 1); // ring included
        QApplication::processEvents();
        QCOMPARE(watcher.paints, 1);
    }
    studio.penEvent(QEvent::TabletRelease, to, 0);
    QCoreApplication::processEvents();
    const QPointF corner = studio.widgetPoint(from - QPointF(300, 300)),
                  opposite = studio.widgetPoint(to + QPointF(300, 300));
    const QRect tiles = QRectF(corner, opposite).toAlignedRect();
    QVERIFY(!watcher.region.isEmpty());
    QVERIFY2(tiles.contains(watcher.region.boundingRect()),
             qPrintable(QStringLiteral("%1").arg(watcher.region.boundingRect().width())));
}

void tst_CanvasView::theViewFollowsItsSize() {
    for (const auto& [told, worked] : {std::pair(true, false), {true, true}, {false, false}, {false, true}}) {
        Studio studio;
        studio.model.newDocument(1000, 900, 72, PaintColor::white(), QStringLiteral("Large"));
        QCOMPARE(studio.session().view.zoom, 0.6); // 540 high
        if (worked) studio.penStroke({{500, 450}});
        QVERIFY(QTest::qWaitForWindowExposed(&studio.canvas));
        PaintWatcher watcher(studio.canvas);
        watcher.hidesResizes = !told; // as a screen of another scale does until it paints
        studio.canvas.resize(460, 700);
        studio.canvas.repaint();
        QCOMPARE(studio.session().view.zoom, worked ? 0.6 : 0.4); // fitted again unless a hand knows it
        QCOMPARE(studio.canvas.viewPoint({500, 450}), QPointF(230, 350));
    }
}

void tst_CanvasView::rectanglesAreSelected_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::addColumn<int>("first"); // value in the part of the first rectangle alone
    QTest::addColumn<int>("common");
    QTest::addColumn<int>("second");
    QTest::newRow("new") << int(SelectionOp::replace) << Qt::KeyboardModifiers() << 0 << 255 << 255;
    QTest::newRow("add") << int(SelectionOp::add) << Qt::KeyboardModifiers() << 255 << 255 << 255;
    QTest::newRow("Command adds") << int(SelectionOp::replace) << Qt::KeyboardModifiers(Qt::ControlModifier)
                                  << 255 << 255 << 255;
    QTest::newRow("Option subtracts")
        << int(SelectionOp::replace) << Qt::KeyboardModifiers(Qt::AltModifier) << 255 << 0 << 0;
    QTest::newRow("both intersect") << int(SelectionOp::add)
                                    << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::AltModifier) << 0
                                    << 255 << 0;
}

void tst_CanvasView::rectanglesAreSelected() {
    QFETCH(int, mode);
    QFETCH(Qt::KeyboardModifiers, keys);
    QFETCH(int, first);
    QFETCH(int, common);
    QFETCH(int, second);
    Studio studio;
    studio.model.setTool(Tool::selectRect);
    studio.mouseDrag({20.6, 20.6}, {99.2, 99.2});
    QCOMPARE(studio.doc().selection->bounds(), (IRect{20, 20, 80, 80}));
    QCOMPARE(int(studio.doc().selection->value(20, 20)), 255); // outward to whole pixels
    ToolOptions options = studio.model.options();
    options.selectionMode = static_cast<SelectionOp>(mode);
    studio.model.setOptions(options);
    studio.mouseDrag({60, 60}, {140, 140}, keys);
    QVERIFY(studio.doc().selection);
    QCOMPARE(int(studio.doc().selection->value(30, 30)), first);
    QCOMPARE(int(studio.doc().selection->value(80, 80)), common);
    QCOMPARE(int(studio.doc().selection->value(130, 130)), second);
    QCOMPARE(studio.doc().undoName(), QStringLiteral("Select"));
}

void tst_CanvasView::aClickRemovesTheSelection() {
    Studio studio;
    studio.model.setTool(Tool::selectRect);
    studio.mouseDrag({60, 60}, {20, 100}, Qt::ShiftModifier); // a square, away from the start
    QCOMPARE(studio.doc().selection->bounds(), (IRect{20, 60, 40, 40}));
    studio.mouseDrag({50, 50}, {51, 51});
    QVERIFY(!studio.doc().selection);
    QCOMPARE(studio.doc().undoName(), QStringLiteral("Deselect"));
    const int64_t steps = studio.doc().undoDepth();
    studio.mouseDrag({50, 50}, {51, 51});
    QCOMPARE(studio.doc().undoDepth(), steps);
}

void tst_CanvasView::keysDoWhatTheyDo() {
    Studio studio;
    const auto size = [&] { return studio.model.activeBrush().size; };
    studio.model.setActiveBrush(dot(2));
    studio.key(Qt::Key_BracketRight, QStringLiteral("]"));
    QCOMPARE(size(), 3.0); // at least one more
    studio.key(Qt::Key_BracketLeft, QStringLiteral("["));
    studio.key(Qt::Key_BracketLeft, QStringLiteral("["));
    studio.key(Qt::Key_BracketLeft, QStringLiteral("["));
    studio.key(Qt::Key_BracketLeft, QStringLiteral("["));
    QVERIFY(size() >= 1);
    studio.model.setActiveBrush(dot(990));
    studio.key(Qt::Key_BracketRight, QStringLiteral("]"));
    QCOMPARE(size(), 1000.0);
    studio.key(Qt::Key_E, QStringLiteral("e"));
    QCOMPARE(studio.model.tool(), Tool::eraser);
    studio.key(Qt::Key_B, QStringLiteral("b"), Qt::ControlModifier);
    QCOMPARE(studio.model.tool(), Tool::eraser);
    studio.key(Qt::Key_G, QStringLiteral("g"));
    QCOMPARE(studio.model.tool(), Tool::bucket);
    const PaintColor first = studio.model.primary();
    studio.key(Qt::Key_X, QStringLiteral("x"));
    QCOMPARE(studio.model.secondary(), first);
    studio.key(Qt::Key_D, QStringLiteral("D"), Qt::ShiftModifier);
    QCOMPARE(studio.model.primary(), PaintColor::black());
    studio.key(Qt::Key_Period, QStringLiteral("."));
    QCOMPARE(studio.session().view.rotation, 15.0);
    studio.key(Qt::Key_W, QStringLiteral("w"));
    QVERIFY(studio.session().view.flipView);
    studio.key(Qt::Key_F, QStringLiteral("f"));
    QCOMPARE(studio.session().view.rotation, 0.0);
    paintRect(studio.doc(), studio.layer(), {0, 0, 9, 9}, {9, 9, 9, 255});
    studio.key(Qt::Key_Delete);
    QVERIFY(studio.layer().isEmpty());
    QCOMPARE(studio.doc().undoName(), QStringLiteral("Clear"));
}

void tst_CanvasView::wheelZoomsAroundThePointer() {
    Studio studio;
    const QPointF place(100, 60);
    const QPointF at = studio.widgetPoint(place);
    QWheelEvent wheel(at, studio.canvas.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&studio.canvas, &wheel);
    QVERIFY(studio.session().view.zoom > 1.05);
    const QPointF now = studio.widgetPoint(place);
    QVERIFY(std::hypot(now.x() - at.x(), now.y() - at.y()) < 1.5);
    const ViewState before = studio.session().view;
    QWheelEvent pan(at, studio.canvas.mapToGlobal(at), {10, 20}, {40, 80}, Qt::NoButton, {}, Qt::ScrollUpdate,
                    false);
    QApplication::sendEvent(&studio.canvas, &pan);
    QCOMPARE(studio.session().view.zoom, before.zoom);
    QCOMPARE(studio.session().view.pan, before.pan + QPointF(10, -20));
}

void tst_CanvasView::theStatusFollowsThePen() {
    Studio studio;
    studio.penEvent(QEvent::TabletPress, {33.7, 21.2}, 0.5);
    const CanvasStatus::Cursor cursor = studio.model.status().cursor();
    QCOMPARE(cursor.x, int64_t{33});
    QCOMPARE(cursor.y, int64_t{21});
    QVERIFY(cursor.inside);
    QVERIFY(std::abs(cursor.pressure - 0.5) < 1e-3);
    studio.penEvent(QEvent::TabletRelease, {33.7, 21.2}, 0);
    studio.canvas.setZoom(0.25);
    QCOMPARE(studio.model.status().view().zoom, 0.25);
}

QIRN_TEST(tst_CanvasView)
#include "tst_CanvasView.moc"

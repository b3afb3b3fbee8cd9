#include "app/model/CanvasStatus.h"
#include "app/model/Clipboard.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "support/Strokes.h"
#include "support/Studio.h"

#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <QApplication>
#include <QPaintEvent>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A hard dot of a few pixels, the same at any pressure or as large as the pressure.
BrushSettings dot(double size = 6, bool pressureSize = false) {
    BrushSettings brush("Dot", "Test", BrushKind::paint);
    brush.size = size;
    brush.hardness = 1;
    brush.pressureSize = pressureSize;
    brush.minSize = 0;
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
    void aStrokeLandsAndIsShownUnderThePen() {
        for (const auto& [zoom, rotation, flip] :
             {std::tuple{1.0, 0.0, false}, {1.7, 37.0, true}, {0.1, -90.0, false}, {32.0, 12.0, true}}) {
            Studio studio;
            studio.model.brushes().setActiveBrush(dot(20));
            studio.model.colors().setPrimary(PaintColor(1, 0, 0));
            studio.canvas.setZoom(zoom);
            studio.canvas.setRotation(rotation);
            if (flip) studio.canvas.toggleFlipView();
            QCOMPARE(studio.model.status().view().zoom, zoom);
            const QPointF place(201.5, 148.5);
            studio.penEvent(QEvent::TabletPress, place, 0.5);
            const CanvasStatus::Cursor cursor = studio.model.status().cursor();
            QVERIFY(cursor.inside && cursor.x == 201 && cursor.y == 148);
            QVERIFY(std::abs(cursor.pressure - 0.5) < 1e-3);
            studio.penEvent(QEvent::TabletRelease, place, 0);
            const auto bounds = studio.layer().contentBounds();
            QVERIFY(bounds.has_value());
            QVERIFY2(std::abs(bounds->x + bounds->w / 2.0 - place.x()) <= 0.75 &&
                         std::abs(bounds->y + bounds->h / 2.0 - place.y()) <= 0.75,
                     qPrintable(bounds->description()));
            studio.pointerLeaves();
            const QImage shown = studio.canvas.grab().toImage();
            if (zoom < 1) continue; // two pixels
            QCOMPARE(shown.pixelColor(studio.widgetPoint(place).toPoint()), QColor(255, 0, 0));
            QCOMPARE(shown.pixelColor(studio.widgetPoint(place + QPointF(11.5, 0)).toPoint()),
                     QColor(255, 255, 255));
        }
    }

    void penAndEnginePaintTheSamePicture() {
        // A swelling line and a tap, all in 1/64ths, which survive every conversion on the way through a window.
        std::vector<std::vector<StrokePoint>> strokes{zigzag(), {{500.25, 60.5, 0.75}}};
        for (StrokePoint& point : strokes[0])
            point.pressure = std::max(std::round(64 * point.pressure), 1.0) / 64;
        for (const char* brush : {"Studio Pen", "Charcoal", "Spray Can", "Smudge"}) {
            Studio studio;
            studio.model.pictures().newDocument(600, 400, 72, PaintColor::white(), "Hand");
            studio.canvas.actualPixels();
            PaintDocument direct(600, 400, 72, PaintColor::white());
            for (PaintDocument* doc : {&studio.doc(), &direct})
                doc->activeLayer().load(*noise(600, 400, 4)); // for what takes up color
            studio.model.brushes().choose(*BrushLibrary::named(brush));
            // A spray burst between two events comes from a timer; the engine's strokes have none.
            studio.set(&BrushSettings::airbrush, false);
            for (const std::vector<StrokePoint>& stroke : strokes) {
                sendStroke(studio.canvas, studio.penTip, stroke);
                paintStroke(direct, stroke, studio.model.brushes().activeBrush(),
                            studio.model.colors().primary(), nullptr, 1);
            }
            QCOMPARE(firstDifference(*studio.layer().toBuffer(), *direct.activeLayer().toBuffer()),
                     QString());
            QVERIFY(studio.doc().undoDepth() == 2);
        }
    }

    void aMouseThatFollowsAPenPaintsNothing() {
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
        // Nor does one that is pushed during a stroke.
        studio.penEvent(QEvent::TabletPress, {50, 150}, 1);
        studio.canvas.clock = [before = studio.canvas.clock] { return before() + 0.2; };
        studio.mouseDrag({300, 20}, {350, 20});
        studio.penEvent(QEvent::TabletMove, {90, 150}, 1);
        studio.penEvent(QEvent::TabletRelease, {90, 150}, 0);
        QVERIFY(studio.layer().pixel(320, 20)[3] == 0 && studio.layer().pixel(70, 150)[3] == 255);
    }

    void theEraserEndErasesAndGivesTheToolBack() {
        enum class Told { byProximity, byEvents, untilTurnedOff };
        for (const Told told : {Told::byProximity, Told::byEvents, Told::untilTurnedOff}) {
            Studio studio;
            studio.model.brushes().setActiveBrush(dot(30));
            studio.penStroke({{100, 100}});
            const auto near = [&](QEvent::Type type) {
                QTabletEvent event(type, &studio.eraserEnd, {}, {}, 0, 0, 0, 0, 0, 0, {}, Qt::NoButton,
                                   Qt::NoButton);
                QApplication::sendEvent(qApp, &event);
            };
            const auto hover = [&](bool eraser) {
                studio.penEvent(QEvent::TabletMove, {100, 100}, 0, eraser);
            };
            told == Told::byProximity ? near(QEvent::TabletEnterProximity) : hover(true);
            QCOMPARE(studio.model.tool(), Tool::eraser);
            studio.penEvent(QEvent::TabletPress, {100, 100}, 1, true);
            studio.penEvent(QEvent::TabletRelease, {100, 100}, 0, true);
            QCOMPARE(studio.layer().pixel(100, 100)[3], uint8_t{0});
            QCOMPARE(studio.doc().undoName(), "Erase");
            if (told == Told::byProximity) near(QEvent::TabletLeaveProximity);
            if (told == Told::byEvents) hover(false);
            if (told == Told::untilTurnedOff) {
                studio.set(&PaintPrefs::tabletEraserSwitches, false);
                QCOMPARE(studio.model.tool(), Tool::brush);
                hover(true);
            }
            QCOMPARE(studio.model.tool(), Tool::brush);
            QVERIFY(!studio.model.penIsEraser);
        }
    }

    void lockedAndHiddenLayersRefuseInWords() {
        Studio studio;
        LayerEdits::toggleLock(studio.model);
        const int64_t steps = studio.doc().undoDepth();
        studio.penStroke({{50, 50}, {90, 90}});
        QCOMPARE(studio.model.messages().hud(),
                 "The layer \"Layer 1\" is locked — unlock it in the Layers panel");
        LayerEdits::toggleLock(studio.model);
        LayerEdits::toggleVisibility(studio.model);
        studio.penStroke({{50, 50}, {90, 90}});
        QCOMPARE(studio.model.messages().hud(), "The layer \"Layer 1\" is hidden — show it to paint on it");
        QVERIFY(studio.layer().isEmpty());
        QCOMPARE(studio.doc().undoDepth(), steps + 2);
        QVERIFY(!studio.canvas.isBusy());
    }

    void aLostReleaseEndsTheGesture() {
        for (int i = 0; i < 6; ++i) {
            const Tool tool =
                std::array{Tool::brush, Tool::shape, Tool::selectRect}[static_cast<std::size_t>(i % 3)];
            const bool pen = i < 3;
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
                [](Studio& s) { s.model.clipboard().copy(Merged::no); },
                [](Studio& s) { // a pen out of reach, a mouse that moves with no button down
                    QTabletEvent gone(QEvent::TabletLeaveProximity, &s.penTip, {}, {}, 0, 0, 0, 0, 0, 0, {},
                                      Qt::NoButton, Qt::NoButton);
                    QApplication::sendEvent(qApp, &gone);
                    QMouseEvent move(QEvent::MouseMove, {}, {}, Qt::NoButton, Qt::NoButton, {});
                    QApplication::sendEvent(&s.canvas, &move);
                },
                [](Studio& s) { // a mouse and a pen that move with nothing down
                    QMouseEvent move(QEvent::MouseMove, {}, {}, Qt::NoButton, Qt::NoButton, {});
                    QApplication::sendEvent(&s.canvas, &move);
                    if (!s.canvas.isInGesture()) return;
                    QTabletEvent hover(QEvent::TabletMove, &s.penTip, {}, {}, 0, 0, 0, 0, 0, 0, {},
                                       Qt::NoButton, Qt::NoButton);
                    QApplication::sendEvent(&s.canvas, &hover);
                },
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
                QCOMPARE(dragged({100, 100}, {130, 140}),
                         int64_t{2}); // another press, without a release before it
                send(QEvent::TabletRelease, QEvent::MouseButtonRelease, {130, 140});
                QCOMPARE(studio.doc().undoDepth(), int64_t{3});
                if (!pen || &end != &ends[0]) continue;
                dragged({10, 10}, {40, 40});
                studio.waitForPenEcho();
                studio.mouseDrag({150, 20}, {190, 60}); // the pen lies on the table
                QCOMPARE(studio.doc().undoDepth(), int64_t{5});
            }
        }
    }

    void pressureAndSpeedReachTheBrush() {
        const auto heightAt = [](Studio& studio, int64_t x) {
            int64_t height = 0;
            for (int64_t y = 0; y < 300; ++y) height += studio.layer().pixel(x, y)[3] > 127;
            return static_cast<double>(height);
        };
        for (const auto& [pressure, curve, height] :
             {std::tuple{0.25, 1.0, 10}, {1.7, 1.0, 40}, {0.25, 0.5, 20}, {0.5, 2.0, 10}}) {
            Studio studio;
            studio.set(&PaintPrefs::pressureCurve, curve);
            studio.model.brushes().setActiveBrush(dot(40, true));
            studio.penStroke({{200, 150}}, pressure);
            QVERIFY(std::abs(heightAt(studio, 200) - height) <= 1);
        }
        for (const auto& [way, time, height] :
             {std::tuple{100, 40u, 8}, {100, 100u, 32}, {100, 0u, 6}, {1, 100u, 40}, {0, 500u, 40}}) {
            Studio studio;
            studio.set(&PaintPrefs::mouseSpeedPressure, true);
            studio.model.brushes().setActiveBrush(dot(40, true));
            studio.mouseEvent(QEvent::MouseButtonPress, {100, 150}, {}, 1000);
            if (way) studio.mouseEvent(QEvent::MouseMove, {100.0 + way, 150}, {}, 1000 + time);
            studio.mouseEvent(QEvent::MouseButtonRelease, {100.0 + way, 150}, {}, 1000 + time);
            QVERIFY(std::abs(heightAt(studio, 100) - height) <= 1); // as thin as the line goes on
            if (way > 1) QVERIFY(std::abs(heightAt(studio, 150) - height) <= 1);
        }
    }

    void undoEscapeAndAFailureDropTheStroke() {
        for (const int way : {0, 1, 2}) {
            Studio studio;
            const uint64_t print = studio.doc().fingerprint();
            studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
            studio
                .waitForPenEcho(); // the next point is told to the status bar, where the failure is one in its middle
            bool failed = way != 2;
            connect(&studio.model.status(), &CanvasStatus::changed, this, [&] {
                if (!std::exchange(failed, true)) studio.model.takeBack("No memory");
            });
            studio.penEvent(QEvent::TabletMove, {120, 50}, 1);
            if (way == 0) studio.model.undo();
            if (way == 1) studio.key(Qt::Key_Escape);
            QVERIFY(failed && !studio.canvas.isBusy());
            QCOMPARE(studio.doc().fingerprint(), print);
            studio.penEvent(QEvent::TabletMove, {220, 50}, 1);
            studio.penEvent(QEvent::TabletRelease, {220, 50}, 0);
            QCOMPARE(studio.doc().fingerprint(), print);
            QVERIFY(studio.doc().undoDepth() == 0 && studio.doc().canRedo() == (way == 0));
        }
    }

    void shiftClickDrawsAStraightLine() {
        Studio studio;
        studio.model.brushes().setActiveBrush(dot(8));
        studio.penStroke({{40, 40}});
        QCOMPARE(studio.layer().pixel(140, 40)[3], uint8_t{0});
        studio.penEvent(QEvent::TabletPress, {240, 40}, 1, false, Qt::ShiftModifier);
        studio.key(Qt::Key_H, "h"); // another tool ends the stroke as its release does
        for (int x = 40; x <= 240; x += 5) QCOMPARE(studio.layer().pixel(x, 40)[3], uint8_t{255});
        QCOMPARE(studio.doc().undoDepth(), int64_t{2});
        QVERIFY(studio.session().isDirty());
        QVERIFY(studio.model.status().lastStrokeStats()->startsWith("Last stroke: 2 points, avg "));
    }

    void optionOrCommandPicksAColor() {
        Studio studio;
        paintRect(studio.doc(), studio.layer(), {10, 10, 20, 20}, {0, 128, 0, 128});
        for (const auto modifier : {Qt::AltModifier, Qt::ControlModifier}) {
            studio.model.colors().setPrimary(PaintColor::black());
            studio.penEvent(QEvent::TabletPress, {15, 15}, 1, false, modifier);
            studio.penEvent(QEvent::TabletRelease, {15, 15}, 0);
            QCOMPARE(studio.model.colors().primary().hex(), "#7FFF7F"); // over the white paper
            QCOMPARE(studio.model.colors().recent().front(), studio.model.colors().primary());
        }
        studio.set(&PaintPrefs::eyedropperAllLayers, false);
        studio.waitForPenEcho();
        for (const Tool tool : {Tool::brush, Tool::lasso}) { // the right button, with the tools that do
            studio.model.colors().setPrimary(PaintColor::black());
            studio.model.setTool(tool);
            QTest::mouseClick(&studio.canvas, Qt::RightButton, {}, studio.widgetPoint({15, 15}).toPoint());
            QCOMPARE(studio.model.colors().primary().hex(), tool == Tool::brush ? "#00FF00" : "#000000");
        }
        studio.model.setTool(Tool::eyedropper);
        studio.mouseDrag({15, 15}, {15, 15});
        QCOMPARE(studio.model.colors().primary().hex(), "#00FF00");
        studio.mouseDrag({100, 100}, {100, 100});
        QCOMPARE(studio.model.messages().hud(), "Nothing to pick there (transparent)");
        QCOMPARE(studio.doc().undoDepth(), int64_t{0});
    }

    void heldAirbrushKeepsPainting() {
        Studio studio;
        studio.model.brushes().choose(*BrushLibrary::named("Airbrush Soft"));
        studio.penEvent(QEvent::TabletPress, {100, 100}, 1);
        const uint8_t first = studio.layer().pixel(100, 100)[3];
        QTRY_VERIFY(studio.layer().pixel(100, 100)[3] > first);
        studio.penEvent(QEvent::TabletRelease, {100, 100}, 0);
    }

    void aStrokeRepaintsOnlyItsOwnRegionOnceAPoint() {
        Studio studio;
        studio.model.pictures().newDocument(3840, 2160, 72, PaintColor::white(), "4K");
        QCoreApplication::processEvents();
        studio.model.brushes().setActiveBrush(dot(20));
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

    void theViewFollowsItsSize() {
        for (const auto& [told, worked] :
             {std::pair(true, false), {true, true}, {false, false}, {false, true}}) {
            Studio studio;
            studio.model.pictures().newDocument(1000, 900, 72, PaintColor::white(), "Large");
            QCOMPARE(studio.session().view.zoom, 0.6); // 540 high
            if (worked) studio.penStroke({{500, 450}});
            QVERIFY(QTest::qWaitForWindowExposed(&studio.canvas));
            PaintWatcher watcher(studio.canvas);
            sendMouse(studio.canvas, QEvent::MouseMove, {100, 200});
            watcher.hidesResizes = !told; // as a screen of another scale does until it paints
            studio.canvas.resize(460, 700);
            studio.canvas.repaint();
            QCOMPARE(studio.session().view.zoom, worked ? 0.6 : 0.4); // fitted again unless a hand knows it
            QCOMPARE(studio.canvas.viewPoint({500, 450}), QPointF(230, 350));
            if (worked) continue; // a mouse right after a pen is its echo
            const QPointF under = studio.canvas.canvasPoint({100, 500}); // 200 from the top
            QTRY_COMPARE(studio.model.status().cursor().y, static_cast<int64_t>(std::floor(under.y())));
        }
    }

    void aFittedViewStaysFittedAndASmallFileIsNotEnlarged() {
        Studio studio;
        const QString path = studio.path("small.png");
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(path));
        studio.model.files().open(path);
        QCOMPARE(studio.session().view.zoom, 1.0);
        studio.canvas.fit();
        QCOMPARE(studio.session().view.zoom, 18.0); // 540 high
        CanvasEdits::rotateCanvas(studio.model, 1);
        QCOMPARE(studio.session().view.zoom, 13.5);
        studio.model.undo();
        QCOMPARE(studio.session().view.zoom, 18.0);
        studio.canvas.setZoom(5);
        CanvasEdits::resizeCanvas(studio.model, 400, 300, 0, 0);
        QCOMPARE(studio.session().view.zoom, 5.0);
    }

    void shiftAndSpaceTurnTheView() {
        Studio studio;
        studio.canvas.setPan({30, -20});
        const QPointF middle = studio.canvas.canvasPoint({400, 300});
        QTest::keyPress(&studio.canvas, Qt::Key_Space, Qt::ShiftModifier);
        sendMouse(studio.canvas, QEvent::MouseButtonPress, {700, 300}, Qt::ShiftModifier);
        sendMouse(studio.canvas, QEvent::MouseMove, {400, 500}, Qt::ShiftModifier); // a quarter clockwise
        sendMouse(studio.canvas, QEvent::MouseButtonRelease, {400, 500}, Qt::ShiftModifier);
        QCOMPARE(std::round(studio.session().view.rotation), 90.0);
        const QPointF off = studio.canvas.canvasPoint({400, 300}) - middle;
        QVERIFY(std::hypot(off.x(), off.y()) < 1);
        // The read-out follows under a pointer at rest.
        QTRY_COMPARE(studio.model.status().cursor().x,
                     static_cast<int64_t>(std::floor(studio.canvas.canvasPoint({400, 100}).x())));
        studio.canvas.setRotation(0);
        QTRY_COMPARE(studio.model.status().cursor().y,
                     static_cast<int64_t>(std::floor(studio.canvas.canvasPoint({400, 100}).y())));
    }

    void rectanglesAreSelected() {
        using Keys = Qt::KeyboardModifiers;
        const struct {
            SelectionOp mode;
            Keys keys;
            int first, common, second; // in the first rectangle alone, in both, in the second alone
        } cases[] = {{SelectionOp::replace, {}, 0, 255, 255},
                     {SelectionOp::add, {}, 255, 255, 255},
                     {SelectionOp::replace, Qt::ControlModifier, 255, 255, 255},
                     {SelectionOp::replace, Qt::AltModifier, 255, 0, 0},
                     {SelectionOp::add, Qt::ControlModifier | Qt::AltModifier, 0, 255, 0}};
        for (const auto& [mode, keys, first, common, second] : cases) {
            Studio studio;
            studio.model.setTool(Tool::selectRect);
            studio.mouseDrag({20.6, 20.6}, {99.2, 99.2});
            QCOMPARE(studio.doc().selection->bounds(), (IRect{20, 20, 80, 80}));
            QCOMPARE(int(studio.doc().selection->value(20, 20)), 255); // outward to whole pixels
            studio.set(&ToolOptions::selectionMode, mode);
            studio.mouseDrag({60, 60}, {140, 140}, keys);
            const auto valueAt = [&](int at) { return int(studio.doc().selection->value(at, at)); };
            QCOMPARE(QList({valueAt(30), valueAt(80), valueAt(130)}), QList({first, common, second}));
            QCOMPARE(studio.doc().undoName(), "Select");
        }
    }

    void aClickRemovesTheSelection() {
        Studio studio;
        studio.model.setTool(Tool::selectRect);
        studio.mouseDrag({60, 60}, {20, 100}, Qt::ShiftModifier); // a square, away from the start
        QCOMPARE(studio.doc().selection->bounds(), (IRect{20, 60, 40, 40}));
        for (int i = 0; i < 2; ++i) { // the second removes nothing
            studio.mouseDrag({50, 50}, {51, 51});
            QVERIFY(!studio.doc().selection);
            QCOMPARE(studio.lastStep(), "2 Deselect");
        }
        CanvasEdits::selectAll(studio.model);
        studio.model.setTool(Tool::lasso); // of two points
        studio.mouseDrag({50, 50}, {50.5, 50.5});
        QVERIFY(!studio.doc().selection);
    }

    void keysDoWhatTheyDo() {
        Studio studio;
        const auto press = [&](char letter, Qt::KeyboardModifiers keys = {}) {
            studio.key(0, QString(QLatin1Char(letter)), keys);
        };
        const auto size = [&] { return studio.model.brushes().activeBrush().size; };
        studio.model.brushes().setActiveBrush(dot(2));
        press(']');
        QCOMPARE(size(), 3.0); // at least one more
        for (int i = 0; i < 4; ++i) press('[');
        QVERIFY(size() >= 1);
        studio.model.brushes().setActiveBrush(dot(990));
        press(']');
        QCOMPARE(size(), 1000.0);
        press('g', Qt::ControlModifier);
        QCOMPARE(studio.model.tool(), Tool::brush);
        const PaintColor first = studio.model.colors().primary();
        press('x');
        QCOMPARE(studio.model.colors().secondary(), first);
        press('D', Qt::ShiftModifier);
        QCOMPARE(studio.model.colors().primary(), PaintColor::black());
        press('.');
        QCOMPARE(studio.session().view.rotation, 15.0);
        press('w');
        QVERIFY(studio.session().view.flipView);
        press('f');
        QCOMPARE(studio.session().view.rotation, 0.0);
        studio.fill({0, 0, 9, 9});
        studio.key(Qt::Key_Delete);
        QVERIFY(studio.layer().isEmpty());
        QCOMPARE(studio.doc().undoName(), "Clear");
    }

    void wheelZoomsAroundThePointer() {
        Studio studio;
        const QPointF place(100, 60);
        const QPointF at = studio.widgetPoint(place);
        sendWheel(studio.canvas, at, {0, 120});
        QVERIFY(studio.session().view.zoom > 1.05);
        const QPointF now = studio.widgetPoint(place);
        QVERIFY(std::hypot(now.x() - at.x(), now.y() - at.y()) < 1.5);
    }

    void onlyWhatIsFinerThanNotchesPans() {
        const QPointingDevice touchpad("touchpad", 9, QInputDevice::DeviceType::TouchPad,
                                       QPointingDevice::PointerType::Finger, {}, 2, 0);
        const QPointingDevice* const mouse = QPointingDevice::primaryPointingDevice();
        const struct {
            const QPointingDevice* device;
            QPoint angle, pixels;
            Qt::ScrollPhase phase;
            std::optional<QPointF> pan; // of none it zooms
        } cases[] = {
            {mouse, {0, -240}, {}, Qt::NoScrollPhase, {}},
            {mouse, {0, 120}, {0, 120}, Qt::NoScrollPhase, {}}, // as X11 tells a wheel
            {mouse, {120, 120}, {5, 5}, Qt::NoScrollPhase, {}},
            {mouse, {40, 80}, {10, 20}, Qt::NoScrollPhase, QPointF(10, -20)},
            {mouse, {0, 120}, {10, 20}, Qt::ScrollUpdate, QPointF(10, -20)},
            {mouse, {16, 24}, {16, 24}, Qt::NoScrollPhase, QPointF(2, -3)}, // as X11 tells a touchpad
            {&touchpad, {0, 120}, {}, Qt::NoScrollPhase, QPointF(0, -15)}};
        for (const auto& [device, angle, pixels, phase, pan] : cases) {
            Studio studio;
            QWheelEvent event({400, 300}, {400, 300}, pixels, angle, Qt::NoButton, {}, phase, false,
                              Qt::MouseEventNotSynthesized, device);
            QApplication::sendEvent(&studio.canvas, &event);
            QCOMPARE(studio.session().view.zoom != 1, !pan.has_value());
            QCOMPARE(studio.session().view.pan, pan.value_or(QPointF()));
        }
    }

    void onlyPointsThatNoHandCanReachAreDropped() {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const QPointF far(1e7, 50);
        for (const QPointF& bad :
             {QPointF(nan, 50), QPointF(50, std::numeric_limits<double>::infinity()), far}) {
            Studio studio, direct;
            const auto send = [&](QEvent::Type type, QPointF at) { studio.penEvent(type, at, 1); };
            for (const bool atTheEnds : {false, true}) {
                send(QEvent::TabletPress, atTheEnds ? bad : QPointF(50, 50));
                send(QEvent::TabletMove, bad);
                if (atTheEnds) send(QEvent::TabletMove, {50, 50});
                for (const QPointF& at : {QPointF(90, 70), bad, QPointF(-70, 60)})
                    send(QEvent::TabletMove, at);
                send(QEvent::TabletRelease, atTheEnds ? bad : QPointF(-70, 60));
                direct.penStroke({{50, 50}, {90, 70}, {-70, 60}});
                QCOMPARE(studio.doc().fingerprint(), direct.doc().fingerprint());
            }
        }
        Studio studio; // of a device whose range is nothing
        studio.model.brushes().setActiveBrush(dot(20, true));
        studio.penEvent(QEvent::TabletPress, {50, 50}, nan);
        QCOMPARE(studio.layer().pixel(50, 50)[3], uint8_t{255});
    }

    void keysThatAreHeldCountForAPenWhoeverHasTheKeyboard() {
        Studio studio;
        paintRect(studio.doc(), studio.layer(), {0, 0, 99, 99}, {0, 128, 0, 255});
        QWidget field;
        const auto press = [&](QEvent::Type type) {
            QKeyEvent event(type, Qt::Key_Alt, {});
            QApplication::sendEvent(&field, &event);
        };
        press(QEvent::KeyPress);
        studio.penStroke({{50, 50}});
        QCOMPARE(studio.model.colors().primary().hex(), "#008000");
        QCOMPARE(studio.doc().undoDepth(), int64_t{0});
        press(QEvent::KeyRelease);
        studio.penStroke({{50, 50}});
        QCOMPARE(studio.doc().undoDepth(), int64_t{1});
    }
};

QIRN_TEST(tst_CanvasView)
#include "tst_CanvasView.moc"

#include "app/canvas/FloatingImage.h"
#include "app/model/Clipboard.h"
#include "app/text/TextSpec.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/ReadFile.h"
#include "support/Studio.h"

#include <cmath>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr IRect kSquare{100, 80, 40, 30};

/// With a red square on the active layer, committed.
struct SquareStudio : Studio {
    SquareStudio() { fill(kSquare); }
};

} // namespace

class tst_CanvasTools : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyToolHasAKeyAndAGesture() {
        const char* const done[kToolCount] = {"Brush Stroke", "Erase",     "Smudge", "Blur",   "Bucket Fill",
                                              "Gradient",     "picks",     "Select", "Select", "Select",
                                              "lifts",        "Rectangle", "asks",   "pans",   "zooms"};
        for (const ToolRow& row : kTools) {
            Studio studio;
            studio.fill({20, 20, 40, 40});
            studio.model.setTool(row.tool == Tool::brush ? Tool::hand : Tool::brush);
            studio.key(0, QString(QLatin1Char(row.key)).toLower());
            QCOMPARE(studio.model.tool(), row.tool);
            const ViewState view = studio.session().view;
            studio.mouseDrag({30, 30}, {90, 70});
            QCoreApplication::processEvents();
            const QString does = studio.doc().undoDepth() > 1 ? *studio.doc().undoName()
                                 : studio.model.colors().primary() == PaintColor(1, 0, 0) ? "picks"
                                 : studio.model.transform().state()                       ? "lifts"
                                 : studio.model.sheet() == PaintSheet{PaintSheet::Kind::text, {30, 30}}
                                     ? "asks"
                                 : studio.session().view.zoom != view.zoom ? "zooms"
                                 : studio.session().view.pan != view.pan   ? "pans"
                                                                           : "nothing";
            QCOMPARE(does, done[static_cast<std::size_t>(row.tool)]);
        }
    }

    void keysAndButtonsLendTheHandAndZoom() {
        constexpr auto kPress = QEvent::MouseButtonPress, kDouble = QEvent::MouseButtonDblClick;
        constexpr auto kCommand = Qt::ControlModifier, kOption = Qt::AltModifier;
        const double zoomed = std::pow(1.01, 60); // for each point to the right
        const struct {
            Tool tool;
            bool space;
            Qt::KeyboardModifiers keys;
            QEvent::Type press;
            Qt::MouseButton button;
            double zoom;
            Qt::CursorShape cursor; // during the drag
        } cases[] = {
            {Tool::hand, false, {}, kPress, Qt::LeftButton, 1, Qt::ClosedHandCursor},
            {Tool::hand, true, kCommand, kDouble, Qt::LeftButton, 1.8, Qt::OpenHandCursor}, // fits
            {Tool::lasso, true, {}, kDouble, Qt::LeftButton, 1, Qt::ClosedHandCursor},
            {Tool::text, false, {}, kPress, Qt::MiddleButton, 1, Qt::IBeamCursor},
            {Tool::brush, true, kCommand, kPress, Qt::LeftButton, zoomed, Qt::OpenHandCursor},
            {Tool::zoom, true, kCommand | kOption, kPress, Qt::LeftButton, zoomed, Qt::OpenHandCursor},
            {Tool::zoom, false, kOption, kPress, Qt::LeftButton, 0.667, Qt::CrossCursor}, // a step
            {Tool::zoom, false, kCommand, kPress, Qt::LeftButton, 0.667, Qt::CrossCursor}};
        for (const auto& [tool, space, keys, press, button, zoom, cursor] : cases) {
            Studio studio;
            studio.model.setTool(tool);
            QKeyEvent down(QEvent::KeyPress, Qt::Key_Space, {}), up(QEvent::KeyRelease, Qt::Key_Space, {});
            if (space) QApplication::sendEvent(&studio.canvas, &down);
            const auto send = [&, keys = keys, button = button](QEvent::Type type, QPointF place) {
                QMouseEvent event(type, place, place, button,
                                  type == QEvent::MouseButtonRelease ? Qt::NoButton : button, keys);
                QApplication::sendEvent(&studio.canvas, &event);
            };
            send(press, {300, 300});
            send(QEvent::MouseMove, {360, 340});
            QCOMPARE(studio.canvas.cursor().shape(), cursor);
            send(QEvent::MouseButtonRelease, {360, 340});
            send(QEvent::MouseMove, {500, 500});
            QCOMPARE(studio.session().view.zoom, zoom);
            if (zoom == 1) QCOMPARE(studio.session().view.pan, QPointF(60, -40));
            QApplication::sendEvent(&studio.canvas, &up);
            QCOMPARE(studio.canvas.cursor().shape(), rowOf(tool).cursor);
        }
    }

    void theBucketFillsAndRemembersTheColor() {
        SquareStudio studio;
        studio.model.setTool(Tool::bucket);
        studio.model.colors().setPrimary(PaintColor(0, 0, 1));
        studio.mouseDrag({110.9, 90.2}, {110.9, 90.2});
        QCOMPARE(studio.layer().pixel(139, 109), (PixelBytes{0, 0, 255, 255}));
        QCOMPARE(studio.layer().pixel(140, 100), (PixelBytes{0, 0, 255, 255})); // grown by a pixel
        QCOMPARE(studio.layer().pixel(142, 100)[3], uint8_t{0});
        QCOMPARE(studio.doc().undoName(), "Bucket Fill");
        QCOMPARE(studio.model.colors().recent().front(), PaintColor(0, 0, 1));
        studio.mouseDrag({-5, 20}, {-5, 20});
        QCOMPARE(studio.model.messages().hud(), "Click inside the picture to fill");
        LayerEdits::toggleLock(studio.model); // which every tool heeds
        for (const Tool tool : {Tool::bucket, Tool::gradient, Tool::shape, Tool::move}) {
            studio.model.messages().flash(QString());
            studio.model.setTool(tool);
            studio.mouseDrag({110, 90}, {200, 150});
            QCOMPARE(studio.model.messages().hud(), "The layer is locked");
        }
        QCOMPARE(studio.lastStep(), "3 Lock");
    }

    void aGradientRunsFromPressToRelease() {
        Studio studio;
        studio.model.setTool(Tool::gradient);
        studio.model.colors().setPrimary(PaintColor::black());
        studio.mouseDrag({100, 50}, {300, 50});
        QCOMPARE(studio.layer().pixel(50, 10), (PixelBytes{0, 0, 0, 255}));
        QCOMPARE(studio.layer().pixel(350, 290), (PixelBytes{255, 255, 255, 255}));
        QVERIFY(std::abs(studio.layer().pixel(200, 150)[0] - 128) <= 2);
        QCOMPARE(studio.doc().undoName(), "Gradient");
        studio.mouseDrag({100, 50}, {100.5, 50});
        QCOMPARE(studio.doc().undoDepth(), int64_t{1});
        studio.model.undo();
        studio.set(&ToolOptions::gradientToTransparent, true);
        studio.mouseDrag({100, 50}, {300, 50});
        QCOMPARE(studio.layer().pixel(350, 290)[3], uint8_t{0});
    }

    void shapesAreDrawnInTheirColors() {
        const struct {
            ShapeKind kind;
            bool fill, outline;
            const char *inside, *edge; // empty: transparent
            const char* undo;          // empty: refused
        } cases[] = {{ShapeKind::rectangle, true, false, "#FF0000", "#FF0000", "Rectangle"},
                     {ShapeKind::rectangle, false, true, "", "#FF0000", "Rectangle"},
                     {ShapeKind::rectangle, true, true, "#FF0000", "#0000FF", "Rectangle"},
                     {ShapeKind::rectangle, false, false, "", "", ""},
                     {ShapeKind::line, true, false, "#FF0000", "#FF0000", "Line"}, // is always drawn
                     {ShapeKind::polygon, true, false, "#FF0000", "", "Hexagon"}};
        for (const auto& [kind, fill, outline, inside, edge, undo] : cases) {
            Studio studio;
            studio.model.setTool(Tool::shape);
            studio.set(&ToolOptions::shapeKind, kind);
            studio.set(&ToolOptions::shapeFill, fill);
            studio.set(&ToolOptions::shapeOutline, outline);
            studio.model.colors().setPrimary(PaintColor(0, 0, 1));
            studio.model.colors().swapColors();
            studio.model.colors().setPrimary(PaintColor(1, 0, 0));
            studio.mouseDrag({50, 50}, {250, 150});
            const auto colorAt = [&](int64_t x, int64_t y) {
                const PixelBytes p = studio.layer().pixel(x, y);
                return p[3] == 0 ? QString() : PaintColor::fromBytes(p[0], p[1], p[2]).hex();
            };
            QCOMPARE(colorAt(150, 100), inside);
            QCOMPARE(colorAt(51, 51), edge);
            QCOMPARE(studio.doc().undoName().value_or(QString()), undo);
            if (!*undo) QCOMPARE(studio.model.messages().hud(), "Turn on Fill or Outline for shapes");
        }
    }

    void ellipsesAndLassosSelect() {
        Studio studio;
        const auto valueAt = [&](int64_t x, int64_t y) { return int(studio.doc().selection->value(x, y)); };
        studio.model.setTool(Tool::selectRect);
        studio.mouseEvent(QEvent::MouseButtonPress, {20, 20});
        studio.key(Qt::Key_O, "o"); // the drag keeps the tool that began it
        studio.mouseEvent(QEvent::MouseButtonRelease, {80, 60});
        QCOMPARE(valueAt(21, 21), 255); // the corner of a box
        studio.mouseDrag({100, 100}, {200, 160});
        QCOMPARE(valueAt(150, 130), 255);
        QCOMPARE(valueAt(102, 102), 0);
        studio.model.setTool(Tool::lasso);
        for (const auto keys : {Qt::ShiftModifier, Qt::NoModifier}) { // it adds, with this tool alone
            studio.mouseEvent(QEvent::MouseButtonPress, {20, 20}, keys);
            for (const QPointF& p : {QPointF(80, 20), QPointF(80, 80), QPointF(20, 80)})
                studio.mouseEvent(QEvent::MouseMove, p, keys);
            studio.mouseEvent(QEvent::MouseButtonRelease, {20, 80}, keys);
            QCOMPARE(valueAt(50, 50), 255);
            QCOMPARE(valueAt(150, 130), keys ? 255 : 0);
        }
        QCOMPARE(studio.doc().selection->bounds(), (IRect{20, 20, 60, 60}));
    }

    void movedPixelsKeepTheirBytesAndTheirSelection() {
        for (const auto& [zoom, way] :
             {std::pair{1.0, QPointF(9, 6)}, {1.37, QPointF(8.73, 5.61)}, {2.0, QPointF(0.5, -1.5)}}) {
            Studio studio;
            studio.layer().load(*noise(400, 300, 9));
            for (uint8_t y = 0; y < 30; ++y) { // opaque, each pixel unlike its neighbors
                for (uint8_t x = 0; x < 40; ++x)
                    paintRect(studio.doc(), studio.layer(), {100 + x, 80 + y, 1, 1},
                              {static_cast<uint8_t>(x * 97), static_cast<uint8_t>(y * 61), 9, 255});
            }
            studio.doc().commit("Noise");
            const auto before = studio.layer().toBuffer();
            studio.select({100, 80, 40, 30});
            studio.canvas.setZoom(zoom);
            studio.model.setTool(Tool::move);
            QPointF hand(110, 90);
            for (int i = 0; i < 12; ++i) {
                studio.mouseDrag(hand, hand + way);
                hand += way;
                QVERIFY(studio.model.transform().state());
                const QPointF corner = studio.model.transform().state()->corners()[0];
                QCOMPARE(studio.layer().pixel(static_cast<int64_t>(corner.x()) + 20,
                                              static_cast<int64_t>(corner.y()) + 10)[3],
                         uint8_t{0}); // they float
                const QRect inside = QRectF(studio.widgetPoint(corner + QPointF(8, 4)),
                                            studio.widgetPoint(corner + QPointF(32, 26)))
                                         .toRect();
                const QImage floating = studio.canvas.grab(inside).toImage();
                studio.key(Qt::Key_Return);
                QVERIFY(!studio.model.transform().state());
                QCOMPARE(studio.doc().selection->bounds().rectF().topLeft(), corner);
                if (zoom == 1)
                    QCOMPARE(studio.canvas.grab(inside).toImage(), floating); // shown where it lands
            }
            const IRect now = studio.doc().selection->bounds();
            for (int64_t y = 0; y < 30; ++y) {
                for (int64_t x = 0; x < 40; ++x) {
                    QCOMPARE(studio.layer().pixel(now.x + x, now.y + y), before->pixel(100 + x, 80 + y));
                }
            }
            while (studio.doc().undoDepth() > 2) studio.model.undo();
            QCOMPARE(firstDifference(*studio.layer().toBuffer(), *before), QString());
        }
    }

    void aTransformIsOneUndoStepHoweverItEnds() {
        void (*const ends[])(Studio&) = {
            [](Studio& s) { s.key(Qt::Key_Return); },
            [](Studio& s) { s.model.transform().applyTransform(); },
            [](Studio& s) { s.model.setTool(Tool::brush); },
            [](Studio& s) { LayerEdits::setActiveLayer(s.model, 0); },
            [](Studio& s) {
                LayerEdits::addLayer(s.model); // a step of its own
                QCOMPARE(s.doc().undoName(), "New Layer");
                s.model.undo();
            },
            [](Studio& s) {
                s.desktop.savePaths = {s.path("moved.qirnpaint")};
                QVERIFY(s.model.files().save(nullptr, PictureFiles::SaveAs::no));
            },
            [](Studio& s) {
                s.desktop.savePaths = {s.path("out.png")};
                s.model.files().exportPicture(ExportFormat::png, 0.9, PaintColor::white());
                QCOMPARE(QImage(s.path("out.png")).pixelColor(155, 115), QColor(Qt::red));
            }};
        for (const auto& end : ends) {
            SquareStudio studio;
            LayerEdits::toggleAlphaLock(studio.model); // which the move neither heeds nor takes away
            studio.model.setTool(Tool::move);
            const uint64_t committed = studio.doc().fingerprint();
            studio.mouseDrag({110, 90}, {160, 120});
            QCOMPARE(studio.doc().undoDepth(), int64_t{2});
            studio.model.safety().autosaveTick(); // of the last step, with the pixels where they were
            BackgroundQueue::files().finish();
            QVERIFY(studio.model.safety().isAutosaved(*studio.model.current()));
            const QString copy = Recovery::fileURL(studio.model.current()->id);
            QCOMPARE(PaintFile::decode(bytesOf(readFile(copy)))->fingerprint(), committed);
            end(studio);
            QVERIFY(!studio.model.transform().state());
            QCOMPARE(studio.doc().layer(1).contentBounds(), std::optional(IRect{150, 110, 40, 30}));
            QVERIFY(studio.doc().layer(1).alphaLocked);
            QCOMPARE(studio.lastStep(), "3 Transform");
        }
    }

    void escapeUndoAndRedoPutPixelsBack() {
        SquareStudio studio;
        const uint64_t print = studio.doc().fingerprint();
        const auto floats = [&](QPointF to) {
            studio.model.setTool(Tool::move);
            studio.mouseEvent(QEvent::MouseButtonPress, {110, 90});
            studio.mouseEvent(QEvent::MouseMove, to); // not let go yet
            return studio.model.transform().state().has_value();
        };
        QVERIFY(floats({160, 120}));
        studio.model.redo(); // nothing to redo: they stay where they are
        QVERIFY(studio.desktop.beeps == 1 && studio.model.transform().state());
        studio.model.transform().cancelTransform();
        CanvasEdits::selectAll(studio.model);
        studio.model.undo();
        void (*const ways[])(Studio&) = {[](Studio& s) { s.key(Qt::Key_Escape); },
                                         [](Studio& s) { s.model.undo(); },
                                         [](Studio& s) { s.model.redo(); }};
        for (const auto& way : ways) {
            QVERIFY(floats({160, 120}) && studio.doc().fingerprint() != print);
            way(studio);
            studio.mouseEvent(QEvent::MouseMove, {200, 150}); // of a drag that is no more
            QVERIFY(!studio.model.transform().state());
            QCOMPARE(studio.doc().fingerprint(), print);
            QVERIFY(studio.doc().undoDepth() == 1 && studio.doc().canRedo());
        }
    }

    void aTransformThatEndsKeepsTheLayerInHandAndMakesNoFalseStep() {
        Studio studio;
        studio.fill({20, 20, 40, 40});
        LayerEdits::addLayer(studio.model);
        studio.fill({60, 60, 40, 40});
        LayerEdits::setActiveLayer(studio.model, 1); // since the last step
        const QUuid inHand = studio.layer().id;
        studio.model.transform().beginTransform();
        studio.key(Qt::Key_Escape);
        QCOMPARE(studio.layer().id, inHand);
        studio.select({300, 200, 9, 9}); // nothing is there
        studio.model.transform().beginTransform();
        QVERIFY(studio.layer().id == inHand && !studio.model.transform().state());
        for (void (*command)(PaintModel&) : {CanvasEdits::deselect, CanvasEdits::invertSelection,
                                             +[](PaintModel& model) { model.clipboard().cut(); }}) {
            studio.select({20, 20, 30, 30});
            studio.model.transform().beginTransform();
            studio.model.transform().updateTransform([](TransformState& state) { state.angle = 30; });
            const int64_t depth = studio.doc().undoDepth();
            command(studio.model); // the turn ends the selection, and nothing is left to be done
            QVERIFY(studio.doc().undoDepth() == depth + 1 && studio.doc().undoName() == "Transform");
            QVERIFY(!studio.layer().isEmpty());
            studio.model.undo();
        }
    }

    void handlesScaleAndTurn() {
        SquareStudio studio;
        studio.model.transform().beginTransform();
        QCOMPARE(studio.model.tool(), Tool::move);
        QCOMPARE(studio.model.transform().state()->center, QPointF(120, 95));
        // The corner at 140, 110: to double the distance keeps the proportions, with Shift each axis for itself.
        studio.mouseDrag({140, 110}, {160, 125});
        QVERIFY(studio.model.transform().state()->scaleX == 2 &&
                studio.model.transform().state()->scaleY == 2);
        studio.mouseDrag({160, 125}, {140, 125}, Qt::ShiftModifier);
        QVERIFY(studio.model.transform().state()->scaleX == 1 &&
                studio.model.transform().state()->scaleY == 2);
        // The rotate handle stands 28 points above the top edge, at y 65.
        studio.mouseDrag({120, 37}, {170, 90}, Qt::ShiftModifier);
        QCOMPARE(studio.model.transform().state()->angle, 90.0);
        studio.model.transform().updateTransform([](TransformState& state) { state.scaleY = 1; });
        studio.model.transform().applyTransform();
        QCOMPARE(*studio.layer().contentBounds(), (IRect{105, 75, 30, 40}));
    }

    void handlesAndAntsAreDrawnWhereTheyAct() {
        SquareStudio studio;
        studio.model.transform().beginTransform();
        for (const double zoom : {1.0, 2.0}) {
            studio.canvas.setZoom(zoom);
            const QPointF handle = studio.widgetPoint({120, 80}) - QPointF(0, 28);
            const QColor drawn = studio.canvas.grab().toImage().pixelColor(handle.toPoint());
            QVERIFY2(drawn.red() > 180 && drawn.green() < 80, qPrintable(drawn.name()));
        }
        studio.model.transform().cancelTransform();
        studio.canvas.setZoom(1);
        studio.model.setTool(Tool::selectRect);
        studio.mouseDrag({100, 100}, {300, 200});
        studio.pointerLeaves();
        for (const double zoom : {1.0, 2.0}) {
            studio.canvas.setZoom(zoom);
            const QPoint edge = studio.widgetPoint({100, 150}).toPoint();
            const QImage shown = studio.canvas.grab({edge - QPoint(1, 0), QSize(3, 16)}).toImage();
            int dark = 0;
            for (int y = 0; y < shown.height(); ++y) dark += qGray(shown.pixel(1, y)) < 128;
            QVERIFY2(dark >= 4, qPrintable(QString::number(dark))); // of dashes on white paper
        }
        studio.mouseDrag({250, 150}, {252, 152}); // four points on the screen are a drag
        QCOMPARE(studio.doc().selection->bounds(), (IRect{250, 150, 2, 2}));
    }

    void arrowsNudgeAndNothingToMoveIsTold() {
        Studio studio;
        const auto refused = [&] {
            studio.model.messages().flash({});
            studio.model.transform().beginTransform();
            return !studio.model.transform().state() &&
                   studio.model.messages().hud() == "Nothing to move on this layer";
        };
        QVERIFY(refused());
        studio.fill(kSquare);
        studio.model.setTool(Tool::move);
        studio.key(Qt::Key_Left);
        studio.key(Qt::Key_Down, {}, Qt::ShiftModifier);
        studio.key(Qt::Key_Return);
        QCOMPARE(*studio.layer().contentBounds(), (IRect{99, 90, 40, 30}));
        studio.model.setTool(Tool::brush);
        studio.key(Qt::Key_Left);
        QVERIFY(!studio.model.transform().state());
        studio.select({0, 0, 20, 20});
        QVERIFY(refused() && studio.doc().selection);
        QCOMPARE(studio.lastStep(), "3 Select");
    }

    void liftedPixelsAreShownAsOneImage() {
        const auto doc = randomDocument(600, 500, 1, 7);
        const Floating floating{doc->layers()[0], {30, 20, 510, 430}, {}};
        const auto whole = floating.picture(floating.origin);
        const auto drawn = [](const auto& draw) {
            QImage device(200, 150, QImage::Format_RGBA8888_Premultiplied);
            device.fill(Qt::transparent);
            QPainter painter(&device);
            draw(painter);
            return device;
        };
        FloatingImage shown; // each view takes up what the last one had
        const QTransform views[] = {QTransform(3, 0, 0, 3, -900, -700), QTransform(3, 0, 0, 3, -930, -640),
                                    QTransform(1, 0, 0, 1, 150, 100),   QTransform(1, 0, 0, 1, -480, -350),
                                    QTransform(1, 0, 0, 1, -900, 0),    QTransform(-1, 0, 0, 2, 300, -500)};
        for (const QTransform& view : views) {
            const QImage got = drawn([&](QPainter& painter) { shown.paint(painter, floating, view); });
            QCOMPARE(got, drawn([&](QPainter& painter) {
                         painter.setTransform(view);
                         painter.drawImage(0, 0, whole->makeImage());
                     }));
        }
        // From afar a pixel is the mean of 4 x 4 of the canvas, at the edges with nothing beyond them: the box begins in the
        // middle of such a block.
        const QTransform afar(0.25, 0, 0, 0.25, 0.5, 0);
        const QImage far = drawn([&](QPainter& painter) { shown.paint(painter, floating, afar); });
        for (const QPoint at : {QPoint(0, 0), QPoint(100, 60), QPoint(127, 107)}) {
            int sums[4] = {8, 8, 8, 8};
            for (int i = 0; i < 64; ++i)
                sums[i % 4] += whole->pixel(at.x() * 4 - 2 + i / 4 % 4,
                                            at.y() * 4 + i / 16)[static_cast<std::size_t>(i % 4)];
            for (int c = 0; c < 4; ++c)
                QCOMPARE(int(far.constScanLine(at.y())[at.x() * 4 + c]), sums[c] / 16);
        }
    }
};

QIRN_TEST(tst_CanvasTools)
#include "tst_CanvasTools.moc"

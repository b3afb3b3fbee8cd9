// Runs the real window under the devices of an X server: what Qt makes of a pen, of fingers and of a wheel is told nowhere
// else. HandsOnX11 [FOLDER]: with a folder, pictures of the screen are left in it. Ends with 77 where there is no such server.
#include "XDevices.h"

#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Colors.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "support/Strokes.h"
#include "support/Window.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>

#include <QElapsedTimer>
#include <QLocale>
#include <QScreen>
#include <QTabletEvent>

namespace qirn::hands {

using namespace test;

namespace {

constexpr QSize kScreen(1480, 920);

/// The driver takes one connection in its life.
struct Devices {
    XDevice pen, touchScreen, mouse;

    explicit Devices(const QString& folder)
        : pen(folder, "pen"),
          touchScreen(folder, "touch"),
          mouse(folder, "mouse") {}
};

/// The main window over the whole screen, and the hands at it.
struct Studio : Window, QObject {
    XDevice &pen, &touchScreen, &mouse;
    QHash<QEvent::Type, int> received; ///< By the canvas.
    std::vector<double> pressures;
    bool heardAll = true;

    explicit Studio(Devices& devices)
        : pen(devices.pen),
          touchScreen(devices.touchScreen),
          mouse(devices.mouse) {
        view.setGeometry({{}, kScreen});
        canvas().strokeSeed = [] { return uint64_t{1}; };
        qApp->installEventFilter(this);
        QTest::qWait(50);
        canvas().actualPixels();
        waitForHands();
    }
    ~Studio() override { touch({}); }

    /// Lets a device do something, and waits until the window has heard of it.
    template <class Deed> void hear(Deed deed) {
        const int before = heard_;
        deed();
        heardAll = QTest::qWaitFor([&] { return heard_ > before; }, 2000) && heardAll;
    }
    /// A second passes: no pen is near any more.
    void waitForHands() {
        canvas().clock = [before = canvas().clock] { return before() + 1; };
    }
    QPointF onScreen(QPointF canvasPoint) { return canvas().mapToGlobal(widgetPoint(canvas(), canvasPoint)); }
    XDevice::Axes axesAt(QPointF screenPoint) {
        return {{0, screenPoint.x() * XDevice::kMost / kScreen.width()},
                {1, screenPoint.y() * XDevice::kMost / kScreen.height()}};
    }
    XDevice::Axes penAt(const StrokePoint& point) { ///< Of the canvas.
        XDevice::Axes axes = axesAt(onScreen({point.x, point.y}));
        axes[XDevice::kPressure] = point.pressure * 1000;
        return axes;
    }
    void movePen(const StrokePoint& point) {
        hear([&] { pen.move(penAt(point)); });
    }
    void pressPen(bool down) {
        hear([&] { pen.button(1, down); });
    }
    void paint(const std::vector<StrokePoint>& points) {
        movePen(points[0]);
        pressPen(true);
        for (std::size_t i = 1; i < points.size(); ++i) movePen(points[i]);
    }
    void moveMouse(const XDevice::Axes& by) {
        hear([&] { mouse.move(by); });
    }
    /// The fingers that lie on the screen now; others are lifted.
    void touch(const std::map<uint32_t, QPointF>& fingers) {
        const auto tell = [this](XDevice::Touch what, uint32_t finger, QPointF at) {
            hear([&] { touchScreen.touch(what, finger, axesAt(at)); });
        };
        for (const auto& [finger, at] : fingers) {
            const auto known = fingers_.find(finger);
            if (known == fingers_.end())
                tell(XDevice::Touch::begin, finger, at);
            else if (known->second != at)
                tell(XDevice::Touch::update, finger, at);
        }
        for (const auto& [finger, at] : std::exchange(fingers_, fingers)) {
            if (!fingers.contains(finger)) tell(XDevice::Touch::end, finger, at);
        }
    }
    ViewState& shown() { return session().view; }
    QImage screen() {
        QTest::qWait(200); // until the view has come to rest
        return view.screen()->grabWindow(0).toImage();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched->isWindowType() && dynamic_cast<QInputEvent*>(event)) ++heard_;
        if (watched != &canvas()) return false;
        ++received[event->type()];
        if (event->type() == QEvent::TabletMove)
            pressures.push_back(static_cast<QTabletEvent*>(event)->pressure());
        return false;
    }

private:
    std::map<uint32_t, QPointF> fingers_;
    int heard_ = 0;
};

/// In eighths, which a pen of 1,000 steps has; in one place the pressure alone changes.
std::vector<StrokePoint> swellingZigzag() {
    std::vector<StrokePoint> points = zigzag();
    for (StrokePoint& point : points) {
        point.x *= 0.7;
        point.pressure = std::clamp(std::round(32 * point.pressure), 1.0, 8.0) / 8;
    }
    for (const double pressure : {0.25, 0.5, 1.0}) {
        points.insert(points.begin() + 30, points[30]);
        points[30].pressure = pressure;
    }
    return points;
}

/// The picture that the engine paints of such strokes without a window.
QString differenceFromEngine(Studio& studio, const std::vector<std::vector<StrokePoint>>& strokes) {
    PaintDocument direct(400, 300, 72, PaintColor::white());
    for (const auto& stroke : strokes)
        paintStroke(direct, stroke, studio.model.brushes().activeBrush(), studio.model.colors().primary(),
                    nullptr, 1);
    return firstDifference(*studio.layer().toBuffer(), *direct.activeLayer().toBuffer());
}

} // namespace

class HandsOnX11 : public QObject {
    Q_OBJECT
public:
    HandsOnX11(const QString& devices, QString pictures)
        : devices_(devices),
          pictures_(std::move(pictures)) {}

private Q_SLOTS:
    void aPenPaintsExactlyWhatItsPointsSay() {
        for (const char* brush : {"Studio Pen", "Charcoal"}) {
            Studio studio(devices_);
            studio.model.brushes().choose(*BrushLibrary::named(brush));
            const std::vector<StrokePoint> points = swellingZigzag();
            studio.paint(points);
            studio.pressPen(false);
            QCOMPARE(studio.received[QEvent::TabletPress], 1);
            QCOMPARE(studio.received[QEvent::TabletRelease], 1);
            QCOMPARE(studio.received[QEvent::TabletMove],
                     static_cast<int>(points.size())); // the first hovers
            for (std::size_t i = 0; i < points.size(); ++i) QCOMPARE(studio.pressures[i], points[i].pressure);
            QCOMPARE(differenceFromEngine(studio, {points}), QString());
            QCOMPARE(studio.lastStep(), "1 Brush Stroke");
            keepPicture(studio, brush);
        }
    }

    void noPointIsLostOrDoubledAndEachIsSoonOnTheScreen() {
        Studio studio(devices_);
        studio.model.pictures().newDocument(3840, 2160, 72, PaintColor::white(), "4K");
        studio.canvas().actualPixels();
        studio.set(&BrushSettings::stabilizer, 0);
        studio.set(&BrushSettings::hardness, 1);
        const auto pointAt = [](int i) { return StrokePoint(1500 + i % 60 * 14, 800 + i / 60 * 14, 1); };
        const QRgb color = QColor(studio.model.colors().primary().hex()).rgb();
        studio.movePen(pointAt(0));
        studio.pressPen(true);
        std::vector<double> times;
        for (int i = 1; i <= 600; ++i) {
            const QPoint place = studio.onScreen({pointAt(i).x, pointAt(i).y}).toPoint();
            QElapsedTimer timer;
            timer.start();
            studio.pen.moveSoon(studio.penAt(pointAt(i)));
            while (studio.view.screen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixel(0, 0) !=
                   color) {
                QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(i)));
                QCoreApplication::processEvents();
            }
            times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
        const int before = studio.received[QEvent::TabletMove], burst = 3000;
        for (int i = 0; i < burst; ++i)
            studio.pen.moveSoon(studio.penAt({1500 + i % 500 * 1.5, 1200 + i * 0.04, 1}));
        studio.pressPen(false);
        QTRY_COMPARE(studio.received[QEvent::TabletRelease], 1);
        QCOMPARE(studio.received[QEvent::TabletMove], before + burst);
        QVERIFY(studio.model.status().lastStrokeStats()->startsWith(
            QStringLiteral("Last stroke: %1 points").arg(1 + 600 + burst + 1))); // press, moves and the end
        std::ranges::sort(times);
        std::printf("Pen to pixel: median %.2f, 99%% %.2f, at most %.2f ms\n", times[300], times[593],
                    times.back());
    }

    void aHoveringPenShowsItsRing() {
        Studio studio(devices_);
        studio.set(&BrushSettings::size, 80);
        studio.movePen({100, 100, 0});
        const QImage before = studio.screen();
        studio.movePen({200, 150, 0});
        const QImage after = studio.screen();
        keepPicture(studio, "ring");
        for (const double angle : {0.1, 2.0, 4.0}) {
            const QPointF on =
                studio.onScreen(QPointF(200, 150) + 40 * QPointF(std::cos(angle), std::sin(angle)));
            QVERIFY(after.pixel(on.toPoint()) != before.pixel(on.toPoint()));
        }
        QCOMPARE(studio.doc().undoDepth(), int64_t{0});
    }

    void aMouseThatIsPushedDuringAStrokePaintsNothing() {
        Studio studio(devices_);
        const std::vector<StrokePoint> points{{50, 50, 0.5}, {90, 80, 0.75}, {200, 90, 1}};
        studio.movePen(points[0]);
        studio.pressPen(true);
        studio.movePen(points[1]);
        studio.moveMouse({{0, 70}, {1, 60}});
        studio.canvas().clock = [before = studio.canvas().clock] { return before() + 0.2; };
        for (const bool down : {true, false}) {
            studio.mouse.button(1, down);
            studio.moveMouse({{0, 20}, {1, 20}});
        }
        studio.movePen(points[2]);
        studio.pressPen(false);
        QCOMPARE(differenceFromEngine(studio, {points}), QString());
        QCOMPARE(studio.lastStep(), "1 Brush Stroke");
    }

    void aLostReleaseEndsTheStrokeWithTheWindow() {
        Studio studio(devices_);
        studio.paint({{50, 50, 1}, {150, 80, 1}});
        QCOMPARE(studio.doc().undoDepth(), int64_t{0});
        QWidget other;
        other.setGeometry(0, 0, 40, 40);
        showActive(other);
        QTRY_COMPARE(studio.lastStep(), "1 Brush Stroke");
        studio.movePen({200, 200, 1}); // the server holds its button still
        QVERIFY(!studio.canvas().isBusy());
        QCOMPARE(differenceFromEngine(studio, {{{50, 50, 1}, {150, 80, 1}}}), QString());
        studio.pressPen(false);
        other.close();
        showActive(studio.view);
        studio.paint({{50, 150, 1}, {150, 180, 1}});
        studio.pressPen(false);
        QCOMPARE(studio.lastStep(), "2 Brush Stroke");
    }

    void aPlainWheelZooms() {
        Studio studio(devices_);
        studio.moveMouse({{0, 1}});
        studio.movePen({200, 150, 0}); // brings the pointer there
        studio.waitForHands();
        for (int i = 0; i < 3; ++i) studio.moveMouse({{XDevice::kWheel, -120}});
        QVERIFY(studio.shown().zoom > 1.5);
        const QPointF off = studio.canvas().viewPoint({200, 150}) - studio.canvas().viewMiddle();
        QVERIFY(std::hypot(off.x(), off.y()) < 3); // round the pointer
    }

    void twoFingersHoldThePicture() {
        double worst = 0;
        for (const auto& [start, zoom, rotation] :
             {std::tuple{ViewState{1, {30, -20}, 0, false}, 2.0, 40.0}, {{3, {}, 350, true}, 0.5, -25.0}}) {
            Studio studio(devices_);
            studio.canvas().setZoom(start.zoom);
            studio.canvas().setRotation(start.rotation);
            studio.canvas().setPan(start.pan);
            if (start.flipView) studio.canvas().toggleFlipView();
            const QPointF held[] = {{150, 120}, {230, 190}};
            const QPointF first = studio.onScreen(held[0]), second = studio.onScreen(held[1]);
            QTransform moves;
            moves.translate(690, 400);
            moves.rotate(rotation);
            moves.scale(zoom, zoom);
            moves.translate(-(first + second).x() / 2, -(first + second).y() / 2);
            studio.touch({{1, first}, {2, second}});
            for (int step = 1; step <= 20; ++step) {
                const QPointF away((20 - step) * 5, 0); // another way to the same place
                const QPointF now[] = {moves.map(first) + away, moves.map(second) - away / 2};
                studio.touch({{1, now[0]}, {2, now[1]}});
                for (const int i : {0, 1}) {
                    const QPointF off = studio.onScreen(held[i]) - now[i];
                    worst = std::max(worst, std::hypot(off.x(), off.y()));
                }
            }
            QVERIFY2(worst <= 0.8, qPrintable(QString::number(worst))); // the view starts on a whole pixel
            QVERIFY(std::abs(studio.shown().zoom / (start.zoom * zoom) - 1) < 1e-3);
            keepPicture(studio, start.flipView ? "fingers-flipped" : "fingers");
            const ViewState view = studio.shown();
            const QPointF last = moves.map(second);
            studio.touch({{2, last}});
            studio.touch({{2, last}, {3, {800, 300}}}); // one comes down elsewhere, and a third
            studio.touch({{2, last}, {3, {800, 300}}, {4, {600, 500}}});
            studio.touch({{2, first}, {3, {820, 300}}, {4, {600, 400}}});
            QCOMPARE(studio.shown(), view);
            studio.touch({});
            studio.touch({{5, first}}); // one alone
            studio.touch({{5, second}});
            QCOMPARE(studio.shown(), view);
            QVERIFY(studio.doc().undoDepth() == 0 && studio.layer().isEmpty());
        }
        std::printf("Fingers: at most %.2f pixels from what they hold\n", worst);
    }

    void fingersRestForAHandAtWork() {
        enum Then { stays, comesBack, goesOn };
        const struct {
            const char* what; // comes into a gesture of two fingers
            void (*comes)(Studio&);
            Then then;
        } cases[] = {
            {"nothing", [](Studio&) {}, goesOn},
            {"a pen at once",
             [](Studio& s) {
                 s.movePen({9, 9, 0});
             },
             comesBack},
            {"a pen over a panel",
             [](Studio& s) {
                 s.movePen({-600, 9, 0});
             },
             comesBack},
            {"a pen, later",
             [](Studio& s) {
                 s.waitForHands();
                 s.movePen({9, 9, 0});
             },
             stays},
            {"another picture",
             [](Studio& s) { s.model.pictures().newDocument(400, 300, 72, std::nullopt, "Other"); }, stays},
        };
        for (const auto& [what, comes, then] : cases) {
            Studio studio(devices_);
            DocSession& session = studio.session();
            const ViewState before = session.view;
            studio.touch({{1, {600, 350}}, {2, {720, 430}}});
            studio.touch({{1, {610, 390}}, {2, {700, 430}}});
            const ViewState held = session.view;
            QVERIFY(held != before);
            comes(studio);
            QVERIFY2(session.view == (then == comesBack ? before : held), what);
            const ViewState now = studio.shown();
            studio.touch({{1, {610, 300}}, {2, {500, 430}}});
            QVERIFY2((studio.shown() != now) == (then == goesOn), what);
        }
        Studio studio(devices_);
        const ViewState before = studio.shown();
        for (const bool penWasHere : {true, false}) {
            penWasHere ? studio.movePen({50, 50, 0}) : studio.waitForHands();
            studio.touch({{1, {600, 350}}, {2, {720, 430}}});
            studio.touch({{1, {610, 390}}, {2, {700, 430}}});
            QCOMPARE(studio.shown() == before, penWasHere);
            studio.touch({});
        }
    }

    void aLiftedGripIsStraightened() {
        for (const auto& [turned, straight] : {std::pair(1.5, 0.0), {-91.5, -90.0}, {2.6, 2.6}}) {
            Studio studio(devices_);
            QTransform moves;
            moves.translate(700, 400);
            moves.rotate(turned);
            studio.touch({{1, {500, 400}}, {2, {900, 400}}});
            studio.touch({{1, moves.map(QPointF(-200, 0))}, {2, moves.map(QPointF(200, 0))}});
            QVERIFY(std::abs(studio.shown().rotation - turned) < 0.01);
            studio.touch({});
            QVERIFY(std::abs(studio.shown().rotation - straight) < 0.01);
        }
    }

    void aTapPressesButtonsAndPaintsNothing() {
        Studio studio(devices_);
        const auto tap = [&](QWidget& widget) {
            studio.touch({{1, widget.mapToGlobal(QPointF(widget.rect().center()))}});
            studio.touch({});
        };
        tap(studio.canvas());
        QVERIFY(studio.layer().isEmpty());
        tap(studio.find<QWidget>("eraser"));
        QCOMPARE(studio.model.tool(), Tool::eraser);
    }

private:
    void keepPicture(Studio& studio, const char* name) {
        if (!pictures_.isEmpty())
            studio.screen().save(QStringLiteral("%1/%2.png").arg(pictures_, QLatin1String(name)));
    }

    Devices devices_;
    const QString pictures_;
};

} // namespace qirn::hands

int main(int argc, char** argv) {
    using namespace qirn::hands;
    XServer server;
    if (const auto why = server.start(kScreen)) {
        std::printf("No X server with devices of its own: %s\n", qPrintable(*why));
        return 77;
    }
    qputenv("DISPLAY", server.display().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    int one = 1;
    QApplication app(one, argv);
    QLocale::setDefault(QLocale::c()); // numbers as on no desktop in particular
    qirn::QirnKit::install(QStringLiteral("Qirn Paint"));
    HandsOnX11 hands(server.folder(), QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    return QTest::qExec(&hands, QStringList(app.arguments().first()));
}

#include "HandsOnX11.moc"

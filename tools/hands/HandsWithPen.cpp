#include "Hands.h"

#include "app/model/Brushes.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Colors.h"
#include "brush/BrushLibrary.h"
#include "support/Strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include <QElapsedTimer>
#include <QLocale>

namespace qirn::hands {

using namespace test;

namespace {

/// In quarters of a pixel and fifths of the pressure, which every device can tell; in one place the pressure alone changes.
std::vector<StrokePoint> swellingZigzag(const Devices& devices) {
    std::vector<StrokePoint> points = zigzag();
    for (StrokePoint& point : points) {
        point.x = std::round(point.x * 0.7 * 4) / 4;
        point.y = std::round(point.y * 4) / 4;
        point.pressure = std::clamp(std::round(20 * point.pressure), 1.0, 5.0) / 5;
        point.tiltX = std::round(devices.mostTilt() * std::sin(point.x));
        point.tiltY = -std::round(devices.mostTilt() * std::cos(point.x));
    }
    for (const double pressure : {0.4, 0.6, 1.0}) {
        points.insert(points.begin() + 30, points[30]);
        points[30].pressure = pressure;
    }
    return points;
}

} // namespace

Hands::Hands(Devices& devices, QString pictures) : devices_(devices), pictures_(std::move(pictures)) {}

void Hands::keepPicture(Studio& studio, const char* name) {
    if (!pictures_.isEmpty())
        studio.screen().save(QStringLiteral("%1/%2.png").arg(pictures_, QLatin1String(name)));
}

std::unique_ptr<QApplication> applicationOn(const char* platform, char** argv) {
    static int one = 1; // the other arguments are not Qt's
    qputenv("QT_QPA_PLATFORM", platform);
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    auto app = std::make_unique<QApplication>(one, argv);
    QLocale::setDefault(QLocale::c()); // numbers as on no desktop in particular
    QirnKit::install(QStringLiteral("Qirn Paint"));
    return app;
}

void Hands::aPenPaintsExactlyWhatItsPointsSay() {
    for (const char* brush : {"Studio Pen", "Charcoal"}) {
        Studio studio(devices_);
        studio.model.brushes().choose(*BrushLibrary::named(brush));
        const std::vector<StrokePoint> points = swellingZigzag(devices_);
        studio.paint(points);
        studio.pressPen(false);
        QCOMPARE(studio.received[QEvent::TabletPress], 1);
        QCOMPARE(studio.received[QEvent::TabletRelease], 1);
        QCOMPARE(studio.received[QEvent::TabletMove],
                 static_cast<int>(points.size())); // the first hovers
        for (std::size_t i = 0; i < points.size(); ++i) {
            QCOMPARE(studio.moves[i].pressure, points[i].pressure);
            QCOMPARE(studio.moves[i].tiltX, points[i].tiltX);
            QCOMPARE(studio.moves[i].tiltY, points[i].tiltY);
        }
        QCOMPARE(studio.differenceFromEngine({points}), QString());
        QCOMPARE(studio.lastStep(), "1 Brush Stroke");
        keepPicture(studio, brush);
    }
}

void Hands::noPointIsLostOrDoubledAndEachIsSoonOnTheScreen() {
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
        devices_.movePen(studio.penAt(pointAt(i)));
        while (devices_.pixel(place) != color) {
            QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(i)));
            QCoreApplication::processEvents();
        }
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    const int before = studio.received[QEvent::TabletMove], burst = 3000;
    for (int i = 0; i < burst; ++i)
        devices_.movePen(studio.penAt({1500 + i % 500 * 1.5, 1200 + i * 0.04, 1}));
    studio.pressPen(false);
    QTRY_COMPARE(studio.received[QEvent::TabletRelease], 1);
    QCOMPARE(studio.received[QEvent::TabletMove], before + burst);
    QVERIFY(studio.model.status().lastStrokeStats()->startsWith(
        QStringLiteral("Last stroke: %1 points").arg(1 + 600 + burst + 1))); // press, moves and the end
    std::ranges::sort(times);
    std::printf("Pen to pixel: median %.2f, 99%% %.2f, at most %.2f ms\n", times[300], times[593],
                times.back());
}

void Hands::aHoveringPenShowsItsRing() {
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

void Hands::theSideButtonOfThePenPicksAColor() {
    Studio studio(devices_);
    studio.fill({0, 0, 400, 300}, {0, 0, 200, 255});
    studio.movePen({100, 100, 0});
    for (const bool down : {true, false}) studio.pressPen(down, Qt::RightButton);
    QCOMPARE(studio.model.colors().primary().hex(), "#0000C8");
    QCOMPARE(studio.layer().pixel(100, 100)[2], uint8_t{200});
}

void Hands::aMouseThatIsPushedDuringAStrokePaintsNothing() {
    Studio studio(devices_);
    const std::vector<StrokePoint> points{{50, 50, 0.4}, {90, 80, 0.8}, {200, 90, 1}};
    studio.movePen(points[0]);
    studio.pressPen(true);
    studio.movePen(points[1]);
    studio.moveMouse({160, 140});
    studio.canvas().clock = [before = studio.canvas().clock] { return before() + 0.2; };
    for (const bool down : {true, false}) {
        devices_.pressMouse(down);
        studio.moveMouse(down ? QPointF(180, 160) : QPointF(200, 180));
    }
    studio.movePen(points[2]);
    studio.pressPen(false);
    QCOMPARE(studio.differenceFromEngine({points}), QString());
    QCOMPARE(studio.lastStep(), "1 Brush Stroke");
}

void Hands::aLostReleaseEndsTheStrokeWithTheWindow() {
    Studio studio(devices_);
    studio.paint({{50, 50, 1}, {150, 80, 1}});
    QCOMPARE(studio.doc().undoDepth(), int64_t{0});
    QWidget other;
    other.setGeometry(0, 0, 40, 40);
    showActive(other);
    QTRY_COMPARE(studio.lastStep(), "1 Brush Stroke");
    studio.movePen({200, 200, 1}); // the server holds its button still
    QVERIFY(!studio.canvas().isBusy());
    QCOMPARE(studio.differenceFromEngine({{{50, 50, 1}, {150, 80, 1}}}), QString());
    studio.pressPen(false);
    other.close();
    showActive(studio.view);
    studio.paint({{50, 150, 1}, {150, 180, 1}});
    studio.pressPen(false);
    QCOMPARE(studio.lastStep(), "2 Brush Stroke");
}

void Hands::aPlainWheelZooms() {
    Studio studio(devices_);
    studio.moveMouse({200, 150});
    for (int i = 0; i < 3; ++i) studio.hear(QEvent::Wheel, [this] { devices_.turnWheel(1); });
    QVERIFY(studio.shown().zoom > 1.5);
    const QPointF off = studio.canvas().viewPoint({200, 150}) - studio.canvas().viewMiddle();
    QVERIFY(std::hypot(off.x(), off.y()) < 3); // round the pointer
}

} // namespace qirn::hands

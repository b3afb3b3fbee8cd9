// Paints strokes of ten presets in the real window, by pen events with swelling pressure, and saves a picture of it:
//     studio_picture FILE.png [RECORDING]
// With a recorded hand (lines of time, x, y, pressure) it paints that instead, with each of the presets in turn.
#include "AppFolders.h"
#include "CanvasView.h"
#include "DocSession.h"
#include "MainView.h"
#include "PaintModel.h"
#include "QirnKit.h"
#include "Store.h"
#include "brush/BrushLibrary.h"
#include "platform/Trigonometry.h"
#include "support/PenRecording.h"
#include "support/ScriptedDesktop.h"

#include <cstdio>

#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTemporaryDir>
#include <QtTest>

using namespace qirn;

namespace {

struct Sample {
    const char* preset;
    const char* color;
};

constexpr Sample kSamples[] = {
    {"Ink Brush", "#14213D"},  {"Charcoal", "#3A3F47"},   {"Calligraphy Ink", "#B3001B"},
    {"Marker", "#00A3E0"},     {"Soft Round", "#6A0DAD"}, {"Chalk", "#E07A1F"},
    {"Dry Brush", "#4F6D2F"},  {"Spray Can", "#FF1F8F"},  {"Pastel Grain", "#0077B6"},
    {"Studio Pen", "#0B0C10"},
};

/// An S-curve within a cell, swelling from a light touch and back.
std::vector<StrokePoint> swellingCurve(double left, double middle, double width, double height) {
    constexpr double kPi = 3.14159265358979323846;
    std::vector<StrokePoint> points;
    constexpr int kPoints = 90;
    for (int i = 0; i <= kPoints; ++i) {
        const double t = static_cast<double>(i) / kPoints;
        const double pressure = 0.08 + 0.92 * sineCosine(kPi * t).sine;
        points.emplace_back(left + t * width, middle + height * sineCosine(2.5 * kPi * t).sine, pressure, 0,
                            0, t);
    }
    return points;
}

class Hand {
public:
    explicit Hand(CanvasView& canvas) : canvas_(canvas) {}

    void paint(const std::vector<StrokePoint>& points) {
        send(QEvent::TabletPress, points.front());
        for (const StrokePoint& point : points) send(QEvent::TabletMove, point);
        send(QEvent::TabletRelease, points.back());
    }

private:
    void send(QEvent::Type type, const StrokePoint& point) {
        const double ratio = canvas_.devicePixelRatioF();
        const QPointF view = canvas_.viewPoint({point.x, point.y});
        const QPointF at = QPointF(view.x(), canvas_.height() * ratio - view.y()) / ratio;
        const bool up = type == QEvent::TabletRelease;
        QTabletEvent event(type, &pen_, at, canvas_.mapToGlobal(at), up ? 0 : point.pressure, 0, 0, 0, 0, 0,
                           {}, type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                           up ? Qt::NoButton : Qt::LeftButton);
        QApplication::sendEvent(&canvas_, &event);
        QApplication::processEvents();
    }

    CanvasView& canvas_;
    const QPointingDevice pen_{QStringLiteral("pen"),
                               1,
                               QInputDevice::DeviceType::Stylus,
                               QPointingDevice::PointerType::Pen,
                               QInputDevice::Capability::Pressure,
                               1,
                               1};
};

void paintTenPresets(PaintModel& model, Hand& hand) {
    int i = 0;
    for (const Sample& sample : kSamples) {
        model.choose(*BrushLibrary::named(QLatin1String(sample.preset)));
        BrushSettings brush = model.activeBrush();
        brush.size = std::min(brush.size * 2, 120.0);
        model.setActiveBrush(brush);
        model.setPrimary(*PaintColor::fromHex(QLatin1String(sample.color)));
        hand.paint(swellingCurve(110 + 900 * (i / 5), 130 + 205 * (i % 5), 780, 52));
        if (++i == 5) model.addLayer();
    }
}

void paintRecording(PaintModel& model, Hand& hand, const QString& path) {
    const auto strokes = test::readPenRecording(path);
    if (!strokes) return;
    int i = 0;
    for (const BrushSettings& preset : BrushLibrary::builtIn()) {
        model.choose(preset);
        model.setPrimary(PaintColor::fromHSV(i * 0.13, 0.7, 0.6));
        const double scale = 0.4, dx = 10 + (i % 7) * 270, dy = -20 + (i / 7) * 210;
        for (const auto& stroke : test::toSixtyFourths(*strokes, scale, dx, dy)) hand.paint(stroke);
        ++i;
    }
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "Which file is the picture to go to?\n");
        return 1;
    }
    QirnKit::install(QStringLiteral("Qirn Paint"));
    QTemporaryDir folder;
    AppFolders::setBaseOverride(folder.path());
    test::ScriptedDesktop desktop;
    Store store;
    PaintModel model(PaintModel::LoadStores::no, desktop, store);
    PaintPrefs prefs;
    prefs.showPerformance = true;
    model.setPrefs(prefs);
    MainView window(model);
    model.newDocument(1920, 1080, 72, PaintColor(0.97, 0.955, 0.92), QStringLiteral("Ten brushes"));
    window.show();
    QCoreApplication::processEvents();
    Hand hand(window.canvas());
    if (argc > 2)
        paintRecording(model, hand, QString::fromLocal8Bit(argv[2]));
    else
        paintTenPresets(model, hand);
    QCoreApplication::processEvents();
    return window.grab().save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}

// Paints strokes of ten presets in the real window, by pen events with swelling pressure, and saves a picture of it:
//     studio_picture FILE.png
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "brush/BrushLibrary.h"
#include "platform/Trigonometry.h"
#include "support/Window.h"

#include <cstdio>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr std::pair<const char*, const char*> kSamples[] = {
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

void paintTenPresets(Window& window) {
    const QPointingDevice pen("pen", 1, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
                              QInputDevice::Capability::Pressure, 1, 1);
    int i = 0;
    for (const auto& [preset, color] : kSamples) {
        window.model.brushes().choose(*BrushLibrary::named(preset));
        window.set(&BrushSettings::size, std::min(window.model.brushes().activeBrush().size * 2, 120.0));
        window.model.colors().setPrimary(*PaintColor::fromHex(color));
        sendStroke(window.canvas(), pen, swellingCurve(110 + 900 * (i / 5), 130 + 205 * (i % 5), 780, 52));
        if (++i == 5) LayerEdits::addLayer(window.model);
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
    QirnKit::install("Qirn Paint");
    Window window;
    window.set(&PaintPrefs::showPerformance, true);
    window.model.pictures().newDocument(1920, 1080, 72, PaintColor(0.97, 0.955, 0.92), "Ten brushes");
    window.model.pictures().close(*window.model.pictures().sessions().front());
    QCoreApplication::processEvents();
    paintTenPresets(window);
    QCoreApplication::processEvents();
    return window.view.grab().save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}

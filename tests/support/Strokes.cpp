#include "support/Strokes.h"

#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"

#include <cmath>

namespace qirn::test {

std::vector<StrokePoint> zigzag() {
    std::vector<StrokePoint> points;
    for (int i = 0; i <= 60; ++i) {
        const int m = i / 20 % 2 == 0 ? i % 20 : 20 - i % 20;
        points.emplace_back(40 + 7.5 * i, 60 + 9 * m, i * (60 - i) / 900.0);
    }
    return points;
}

ZigzagResult paintZigzag(const BrushSettings& brush) {
    auto doc = std::make_unique<PaintDocument>(520, 300, 72, std::nullopt);
    PaintColor color(0.75, 0.25, 0.125, 1);
    if (brush.kind != BrushKind::paint) {
        BrushSettings bed = *BrushLibrary::named(QStringLiteral("Hard Round"));
        bed.size = 120;
        const std::vector<StrokePoint> band{{100, 150, 1}, {420, 150, 1}};
        paintStroke(*doc, band, bed, PaintColor(0.25, 0.5, 1, 1), nullptr, 1);
        color = PaintColor::black();
    }
    const LayerRef layer = doc->layers().front();
    BrushStroke stroke(*doc, layer, brush, color, 1);
    for (const StrokePoint& point : zigzag()) stroke.add(point);
    stroke.end();
    return {std::move(doc), layer->fingerprint(), stroke.dabCount(), stroke.dirty()};
}

std::vector<StrokePoint> line(double x0, double y0, double x1, double y1, double step) {
    const int count = std::max(1, static_cast<int>(std::ceil(std::hypot(x1 - x0, y1 - y0) / step)));
    std::vector<StrokePoint> points;
    for (int i = 0; i <= count; ++i) {
        const double t = static_cast<double>(i) / count;
        points.emplace_back(x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, 1);
    }
    return points;
}

BrushSettings plainBrush(double size, BrushKind kind) {
    BrushSettings brush(QStringLiteral("Plain"), QStringLiteral("Tests"), kind);
    brush.size = size;
    brush.hardness = 1;
    brush.spacing = 0.05;
    brush.pressureSize = false;
    return brush;
}

} // namespace qirn::test

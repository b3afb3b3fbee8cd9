#include "brush/BrushPreview.h"

#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "platform/Require.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <array>
#include <numbers>

namespace qirn {

namespace {

constexpr uint64_t kSeed = 1; // fixed, so that a preset always looks the same

/// A broad band across the picture for a brush that paints nothing of its own.
void layBed(PaintDocument& doc, double width, double height) {
    std::optional<BrushSettings> bed = BrushLibrary::named(QStringLiteral("Hard Round"));
    require(bed.has_value());
    bed->size = height / 2;
    const std::array<StrokePoint, 2> line{{{6, height / 2, 1}, {width - 6, height / 2, 1}}};
    paintStroke(doc, line, *bed, {0.55, 0.6, 0.7, 1}, nullptr, kSeed);
}

/// One wave from edge to edge that swells from a light touch to a heavy one and fades again.
std::array<StrokePoint, 61> sampleWave(double width, double height) {
    std::array<StrokePoint, 61> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double t = static_cast<double>(i) / 60;
        points[i] = StrokePoint(10 + t * (width - 20),
                                height / 2 + sineCosine(2 * std::numbers::pi * t).sine * height * 0.22,
                                sineCosine(std::numbers::pi * t).sine * 0.85 + 0.15, 0, 0, t);
    }
    return points;
}

} // namespace

QImage BrushPreview::render(const BrushSettings& brush, int64_t width, int64_t height,
                            const PaintColor& color) {
    PaintDocument doc(width, height, 72, std::nullopt);
    const auto w = static_cast<double>(width), h = static_cast<double>(height);
    BrushSettings sample = brush;
    sample.stabilizer = 0;
    sample.size = std::min(sample.size, 0.55 * h);
    if (sample.spray) sample.particleSize = std::min(sample.particleSize, 3.0);
    if (sample.kind != BrushKind::paint) layBed(doc, w, h);
    // A gentle eraser would hardly be visible.
    if (sample.kind == BrushKind::erase) sample.flow = std::max(sample.flow, 0.5);
    paintStroke(doc, sampleWave(w, h), sample, color, nullptr, kSeed);
    return flattenedImage(doc);
}

} // namespace qirn

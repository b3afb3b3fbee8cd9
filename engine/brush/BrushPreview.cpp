#include "brush/BrushPreview.h"

#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "platform/Require.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

namespace qirn {

namespace {

constexpr uint64_t kSeed = 1; // fixed, so that a preset always looks the same

/// A picture of logical pixels, each `scale` of its own wide.
struct Sheet {
    double width, height; ///< Logical.
    double scale;
    PaintDocument doc;

    Sheet(int64_t logicalWidth, int64_t logicalHeight, double pixels)
        : width(static_cast<double>(logicalWidth)),
          height(static_cast<double>(logicalHeight)),
          scale(pixels),
          doc(std::llround(width * scale), std::llround(height * scale), 72, std::nullopt) {}

    StrokePoint at(double x, double y, double pressure, double time = 0) const {
        return {x * scale, y * scale, pressure, 0, 0, time};
    }
    /// The lengths of the brush are logical.
    void paint(std::span<const StrokePoint> points, BrushSettings brush, const PaintColor& color) {
        for (double BrushSettings::*length :
             {&BrushSettings::size, &BrushSettings::particleSize, &BrushSettings::textureScale})
            brush.*length *= scale;
        paintStroke(doc, points, brush, color, nullptr, kSeed);
    }
};

/// A broad band across the sheet for a brush that paints nothing of its own.
void layBed(Sheet& sheet) {
    std::optional<BrushSettings> bed = BrushLibrary::named(QStringLiteral("Hard Round"));
    require(bed.has_value());
    bed->size = sheet.height / 2;
    const std::array<StrokePoint, 2> line{sheet.at(6, sheet.height / 2, 1),
                                          sheet.at(sheet.width - 6, sheet.height / 2, 1)};
    sheet.paint(line, *bed, {0.55, 0.6, 0.7, 1});
}

/// One wave from edge to edge that swells from a light touch to a heavy one and fades again.
std::array<StrokePoint, 61> sampleWave(const Sheet& sheet) {
    std::array<StrokePoint, 61> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double t = static_cast<double>(i) / 60;
        points[i] =
            sheet.at(10 + t * (sheet.width - 20),
                     sheet.height / 2 + sineCosine(2 * std::numbers::pi * t).sine * sheet.height * 0.22,
                     sineCosine(std::numbers::pi * t).sine * 0.85 + 0.15, t);
    }
    return points;
}

} // namespace

QImage BrushPreview::render(const BrushSettings& brush, int64_t width, int64_t height,
                            const PaintColor& color, double scale) {
    Sheet sheet(width, height, scale);
    BrushSettings sample = brush;
    sample.stabilizer = 0;
    sample.size = std::min(sample.size, 0.55 * sheet.height);
    if (sample.spray) sample.particleSize = std::min(sample.particleSize, 3.0);
    if (sample.kind != BrushKind::paint) layBed(sheet);
    // A gentle eraser would hardly be visible.
    if (sample.kind == BrushKind::erase) sample.flow = std::max(sample.flow, 0.5);
    sheet.paint(sampleWave(sheet), sample, color);
    return flattenedImage(sheet.doc);
}

} // namespace qirn

#include "operations/Gradient.h"

#include "operations/RowPainter.h"
#include "operations/Selection.h"
#include "operations/TileParts.h"
#include "platform/FloatPixel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qirn {

namespace {

using Row = std::array<double, kTileSize>;

/// Positions along the drag: 0 at its start and before, 1 at its end and beyond.
class Drag {
public:
    Drag(const QPointF& from, const QPointF& to)
        : x_(from.x()),
          y_(from.y()),
          dx_(to.x() - from.x()),
          dy_(to.y() - from.y()),
          len2_(std::max(dx_ * dx_ + dy_ * dy_, 1e-9)),
          len_(std::sqrt(len2_)) {}

    /// For the centres of `count` pixels from (x, y) on.
    template <GradientKind kind> void row(int64_t x, int64_t y, int64_t count, Row& out) const {
        const double v = static_cast<double>(y) + 0.5 - y_;
        for (int64_t i = 0; i < count; ++i) {
            const double u = static_cast<double>(static_cast<int32_t>(x + i)) + 0.5 - x_;
            double t;
            if constexpr (kind == GradientKind::radial) {
                t = std::sqrt(u * u + v * v) / len_;
            } else {
                t = (dx_ * u + dy_ * v) / len2_;
                if constexpr (kind == GradientKind::reflected) t = std::fabs(t);
            }
            out[static_cast<std::size_t>(i)] = std::min(std::max(0.0, t), 1.0);
        }
    }

private:
    double x_, y_, dx_, dy_, len2_, len_;
};

/// The colours from start to end, mixed premultiplied.
class Ramp {
public:
    Ramp(const PaintColor& start, const PaintColor& end, double opacity)
        : opacity_(opacity),
          first_{start.r * start.a, start.g * start.a, start.b * start.a, start.a},
          step_(Channels{end.r * end.a, end.g * end.a, end.b * end.a, end.a} - first_) {}

    /// Straight colours with a 1 behind each, and coverages; a colour without coverage is of no consequence.
    void row(const Row& positions, int64_t count, float* colors, float* coverage) const {
        for (int64_t i = 0; i < count; ++i) {
            const Channels mixed = first_ + step_ * positions[static_cast<std::size_t>(i)];
            const auto arriving = static_cast<float>(mixed[3] * opacity_);
            // Where so little alpha is left that none arrives, the division could give anything.
            const bool isSeen = arriving > 0;
            coverage[i] = isSeen ? arriving : 0;
            storePixel(colors + i * 4,
                       isSeen ? __builtin_convertvector(mixed / mixed[3], FloatPixel) : FloatPixel{});
        }
    }

private:
    using Channels = double __attribute__((vector_size(32)));

    double opacity_;
    Channels first_, step_;
};

} // namespace

IRect gradientFill(PaintDocument& doc, const QPointF& from, const QPointF& to, GradientKind kind,
                   const PaintColor& start, const PaintColor& end, double opacity) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return {};
    const Selection* selection = doc.selection.get();
    const IRect area = selection ? selection->bounds() : doc.grid().bounds();
    const AlphaLock lock = layer.alphaLocked ? AlphaLock::yes : AlphaLock::no;
    TileParts parts(layer);
    for (int64_t index : doc.grid().tilesIn(area)) {
        const IRect part = doc.grid().rectOf(index).intersection(area);
        if (extentOf(selection, part) != Extent::nothing) parts.take(index, part);
    }
    const Drag drag(from, to);
    const Ramp ramp(start, end, opacity);
    const auto positions = kind == GradientKind::linear   ? &Drag::row<GradientKind::linear>
                           : kind == GradientKind::radial ? &Drag::row<GradientKind::radial>
                                                          : &Drag::row<GradientKind::reflected>;
    parts.run([&](const TilePart& at, int64_t y) {
        Row t;
        std::array<float, kTileSize * 4> colors;
        std::array<float, kTileSize> coverage;
        (drag.*positions)(at.part.x, y, at.part.w, t);
        ramp.row(t, at.part.w, colors.data(), coverage.data());
        if (selection) {
            const uint8_t* selected = selection->row(y) + at.part.x;
            for (std::size_t i = 0; i < static_cast<std::size_t>(at.part.w); ++i) {
                coverage[i] *= static_cast<float>(selected[i]) / 255;
            }
        }
        paintRow(lock, colors.data(), coverage.data(), at.row(y), at.part.w);
    });
    doc.markDirty(area);
    return area;
}

} // namespace qirn

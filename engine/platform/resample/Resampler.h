#pragma once
#include "platform/resample/PixelMap.h"
#include "platform/resample/ScaleBlock.h"

#include <cstdint>
#include <optional>
#include <vector>

#include <QRectF>
#include <QTransform>

namespace qirn {

/// Draws a picture under an affine transform, as if it lay on a transparent plane without end.
///
/// Whole-pixel moves, quarter turns and mirrors copy the bytes. Everything else is filtered (see ScaleWeights) along
/// the axes of the source, which keeps sharpness and colors at transparent borders and shrinks without moire.
/// Singular and non-affine transforms draw nothing. The same bytes come out on every machine, on any number of
/// threads and in whatever rectangles the target is asked for.
class Resampler {
public:
    /// `toTarget` leads from source to target coordinates, y down; pixels are unit squares. The source stays
    /// borrowed.
    Resampler(const PixelView& source, const QTransform& toTarget);
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// The map of a transform that only copies.
    const std::optional<PixelMap>& copies() const { return map_; }
    /// Nothing is drawn outside, soft edges included: these reach half a source pixel beyond the picture's own
    /// edges. Empty when nothing is drawn at all.
    QRectF reach() const { return reach_; }
    /// Writes all target pixels from (x, y) on, transparent where the picture is not; rows in parallel.
    void draw(int64_t x, int64_t y, int64_t width, int64_t height, uint8_t* out) const;

private:
    void reduceSource();
    void copyTo(const TargetBlock& block) const;

    PixelView source_;
    std::optional<PixelMap> map_;
    QTransform toSource_; // from target coordinates
    QRectF reach_;
    bool isStraight_ = false; // neither turned nor sheared
    double filterX_ = 1;      // how far the filter is widened along the axes of the source
    double filterY_ = 1;
    std::vector<uint8_t> reduced_; // what source_ shows where a turned picture shrinks much
};

} // namespace qirn

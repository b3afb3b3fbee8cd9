#pragma once
#include "brush/BrushSettings.h"
#include "brush/TipEdge.h"
#include "core/IRect.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <vector>

namespace qirn {

/// Smears paint: the tip carries a square of pixels, leaves some of it behind and picks up new paint as it moves. It
/// works on the layer as the last dab left it, and heeds neither opacity, flow, texture nor color.
class SmudgeTip {
public:
    SmudgeTip(PaintDocument& document, Layer& layer, const BrushSettings& brush);

    /// The center in canvas pixels, the diameter with pressure and jitter. The first dab only fills the tip.
    /// Returns what changed, marked dirty.
    IRect dab(double x, double y, double size);

private:
    /// Pixels of one row that lie in one tile; `dx`, `dy` lead from the center to the first of them.
    struct Row {
        int64_t tile, x, y, count, dx, dy;
    };
    void pickUp(const TipEdge& edge, const Row& row, float* load) const;
    IRect drag(const TipEdge& edge, const Row& row, float* load); // returns the part that it changed

    PaintDocument& document_;
    Layer& layer_;
    const double hardness_;
    const float strength_;
    const float pick_;        // share of new paint that a dab takes up
    const int64_t halfWidth_; // of the carried square, pixels
    std::vector<float> load_; // four channels from 0 to 255 a pixel; empty until the first dab
};

/// Mixes a box blur of the neighborhood into the pixels under the tip. Like the smudge it works on the layer as
/// the last dab left it.
class BlurTip {
public:
    BlurTip(PaintDocument& document, Layer& layer, const BrushSettings& brush);

    /// As above. Returns the square that was looked at, marked dirty.
    IRect dab(double x, double y, double size);

private:
    struct Row {
        int64_t tile, x, y, count;
        double cx, cy; // of the dab
    };
    // The square of the dab, and the larger one that its blur reads; half-open ranges of rows and columns.
    void makeRoom(const IRect& area, const IRect& around);
    void read(const IRect& around, int64_t firstRow, int64_t lastRow);
    void blurRows(int64_t width, int64_t b, int64_t firstRow, int64_t lastRow);
    void blurColumns(const IRect& area, int64_t b, int64_t firstColumn, int64_t lastColumn);
    void mix(const TipEdge& edge, const Row& row, const float* source, const float* blurred);

    PaintDocument& document_;
    Layer& layer_;
    const double hardness_;
    const float strength_;
    // Buffers, kept to reuse their memory; four channels from 0 to 255 a pixel.
    std::vector<float> source_, rows_, blurred_, sums_;
};

} // namespace qirn

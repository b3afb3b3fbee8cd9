#pragma once
#include "brush/BrushSettings.h"
#include "brush/StrokePoint.h"
#include "core/IRect.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qirn::test {

/// A zigzag of 61 points across a canvas of 520 x 300, four tile seams wide, that swells from no pressure to a
/// quarter and back.
std::vector<StrokePoint> zigzag();

/// What the zigzag of a brush leaves on one layer, seed 1: the same on every machine. Painting brushes start on
/// an empty layer; the others work on a broad blue band.
struct ZigzagResult {
    std::unique_ptr<PaintDocument> document;
    uint64_t fingerprint; ///< Of the layer.
    int64_t dabCount;
    IRect dirty;
};
ZigzagResult paintZigzag(const BrushSettings& brush);

/// Full pressure along a straight line, a point every `step` pixels, both ends included.
std::vector<StrokePoint> line(double x0, double y0, double x1, double y1, double step = 10);

/// A plain round tip without any dynamics: `spacing` 0.05, no pressure.
BrushSettings plainBrush(double size, BrushKind kind = BrushKind::paint);

} // namespace qirn::test

#pragma once
#include "brush/StrokePoint.h"

#include <optional>
#include <vector>

#include <QString>

namespace qirn::bench {

/// One stroke of a hand, from pen down to pen up, in canvas pixels.
using PenStroke = std::vector<StrokePoint>;

/// Reads lines of "time x y pressure" (seconds, canvas pixels, 0 to 1; pressure 0: the pen is up), exactly as they
/// are. Nothing when the file cannot be read or holds anything but four numbers and four again.
std::optional<std::vector<PenStroke>> readPenRecording(const QString& path);

/// Scaled first, then moved by pixels. Positions and pressure come out as whole 1/64ths (of a pixel, of full
/// pressure), which survive every conversion on the way through a window; a pen that is down stays down.
std::vector<PenStroke> toSixtyFourths(const std::vector<PenStroke>& strokes, double scale = 1, double dx = 0,
                                      double dy = 0);

} // namespace qirn::bench

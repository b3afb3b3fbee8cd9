#pragma once
#include "brush/StrokePoint.h"

#include <optional>
#include <vector>

#include <QString>

namespace qirn::test {

/// Strokes of a hand, each from pen down to pen up, in canvas pixels; what the canvas tests and the benchmarks
/// replay.
using PenStrokes = std::vector<std::vector<StrokePoint>>;

/// Reads lines of "time x y pressure" (seconds, canvas pixels, 0 to 1; pressure 0: the pen is up). Nothing when
/// the file cannot be read or a line is not four numbers.
std::optional<PenStrokes> readPenRecording(const QString& path);

/// The half minute of a real hand that may lie in the folder that QIRN_DATA names; nothing where it does not.
std::optional<PenStrokes> recordedHand();

/// A short hand of our own: swelling curves, a scribble, dots and a slow line, within 600 x 400.
PenStrokes syntheticHand();

struct PenAdjustment {
    double scale = 1; ///< First.
    double dx = 0;    ///< Then moved, pixels.
    double dy = 0;
    bool toSixtyFourths =
        false; ///< Last: positions to 1/64 pixel, pressure to 1/64, as exact binary fractions.
};
PenStrokes adjusted(const PenStrokes& strokes, const PenAdjustment& how);

} // namespace qirn::test

#pragma once
#include "brush/StrokePoint.h"

#include <vector>

namespace qirn {

/// Line smoothing: the painted line trails behind the pen. Both steps are pure, the stroke keeps the state.
namespace StrokeStabilizer {

/// Where the line moves when the pen is at `sample`; `strength` is above 0 and at most 100. Tilt stays that of
/// the stroke's first sample, and pressure follows faster than place.
StrokePoint follow(const StrokePoint& smoothed, const StrokePoint& sample, double strength);

/// The points that take the line from where it trails to where the pen was lifted, ending exactly there.
std::vector<StrokePoint> catchUp(const StrokePoint& smoothed, const StrokePoint& pen);

} // namespace StrokeStabilizer

} // namespace qirn

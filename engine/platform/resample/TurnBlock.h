#pragma once
#include "platform/resample/ScaleBlock.h"

#include <QTransform>

namespace qirn {

inline constexpr double kWidestTurnFilter = 2;

/// Writes a block of target pixels of a picture that is turned or sheared. `toSource` leads from target to source
/// coordinates; the filter lies along the axes of the source and is widened by the factors given, from 1 to
/// `kWidestTurnFilter`. Outside the source all is transparent. A pixel's bytes do not depend on the block that it
/// is made in. Any thread.
void turnBlock(const PixelView& source, const QTransform& toSource, double filterX, double filterY,
               const TargetBlock& block);

} // namespace qirn

#pragma once
#include <QImage>

/// The pixels of a color wheel, premultiplied, one for each device pixel. Colors are computed in floating point and
/// rounded once; edges are as smooth as the share of the pixel that they cover.
namespace qirn::WheelImages {

/// All hues at full strength round a circle that fills the square, red to the right and yellow below it; transparent
/// inside of `thickness` and outside. Lengths in pixels.
QImage ring(int side, double thickness);

/// Saturation to the right and brightness upward, of one hue (a fraction of the circle). Opaque.
QImage tones(int side, double hue);

} // namespace qirn::WheelImages

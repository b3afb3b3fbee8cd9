#pragma once
#include <QRectF>

class QPainter;

namespace qirn {

/// The soft shadow of the picture: black at 0.6, blurred by 14 and moved down by 4 canvas pixels. Draws only what lies outside
/// `canvas` and a little inside its edge.
void drawCanvasShadow(QPainter& painter, const QRectF& canvas);

} // namespace qirn

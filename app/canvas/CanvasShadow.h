#pragma once
#include <QRectF>

class QPainter;

namespace qirn {

/// The soft shadow under the picture: black at 0.6, a blur of 14 and 4 downward, in canvas pixels. Draws only the
/// frame that sticks out from under `canvas` and a little below its edge.
void drawCanvasShadow(QPainter& painter, const QRectF& canvas);

} // namespace qirn

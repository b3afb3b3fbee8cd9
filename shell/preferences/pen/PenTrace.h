#pragma once
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>

namespace qirn {

/// What a pen has drawn to try it: a mask that takes its color when it is shown. Points and radii are device pixels, y
/// down. Only a change of the size allocates.
class PenTrace {
public:
    enum class Mark { draw, erase };

    /// What was drawn stays where it was, as far as there is room for it.
    void resize(const QSize& size);
    void clear() { mask_.fill(0); }

    /// A line whose radius goes evenly from one end to the other; returns the pixels that it may have changed.
    QRect line(QPointF from, double fromRadius, QPointF to, double toRadius, Mark mark);
    void paint(QPainter& painter, const QRect& exposed, const QColor& color); ///< In device pixels.

private:
    QImage mask_; // indexed: a byte of coverage a pixel, its colors set when it is painted
};

} // namespace qirn

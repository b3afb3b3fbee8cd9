#pragma once
#include "core/IRect.h"

#include <QImage>
#include <QTransform>

class QPainter;

namespace qirn {

struct Floating;

/// One image of what a view shows of lifted pixels: no larger than that needs, however many were lifted.
class FloatingImage {
public:
    /// Draws the pixels' box under a transform to device pixels, in which the painter draws, and leaves it transformed.
    void paint(QPainter& painter, const Floating& floating, const QTransform& toDevice);
    void clear() { *this = {}; } ///< For other pixels.

private:
    void make(const Floating& floating, const IRect& part, int level);

    QImage image_;
    IRect part_;    // of the canvas, as the pixels lay there
    int level_ = 0; // one pixel shows 2^level x 2^level
};

} // namespace qirn

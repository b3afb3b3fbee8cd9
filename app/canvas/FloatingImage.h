#pragma once
#include "core/IRect.h"

#include <QImage>
#include <QTransform>

class QPainter;

namespace qirn {

struct Floating;

/// The lifted pixels that a view shows, as one image at the resolution that the view needs: its size depends on the window
/// and not on how much was lifted.
class FloatingImage {
public:
    /// Draws the pixels' box under a transform to device pixels, in which the painter draws, and leaves it transformed.
    void paint(QPainter& painter, const Floating& floating, const QTransform& toDevice);
    void clear() { *this = {}; } ///< When other pixels are lifted.

private:
    void render(const Floating& floating, const IRect& part, int level);

    QImage image_;
    IRect part_;    // of the canvas, as the pixels lay there
    int level_ = 0; // one pixel shows 2^level x 2^level
};

} // namespace qirn

#pragma once
#include <cstdint>

#include <QRectF>
#include <QString>

namespace qirn {

/// A rectangle of whole canvas pixels: `x` and `y` are inside, `maxX()` and `maxY()` are just outside; y grows
/// downward. Drawing operations return the zero rectangle when nothing was done. No result wraps: an overflow
/// stops the process.
struct IRect {
    int64_t x = 0;
    int64_t y = 0;
    int64_t w = 0;
    int64_t h = 0;

    /// Floors the left and top edges and raises the right and bottom ones; a null or infinite rectangle gives
    /// the zero rectangle.
    static IRect covering(const QRectF& rect);

    int64_t maxX() const;
    int64_t maxY() const;
    bool isEmpty() const { return w < 1 || h < 1; }
    bool contains(int64_t px, int64_t py) const { return px >= x && py >= y && px < maxX() && py < maxY(); }

    /// The common part, or exactly the zero rectangle when there is none.
    IRect intersection(const IRect& other) const;
    /// The smallest rectangle that holds both; an empty one counts for nothing.
    IRect united(const IRect& other) const;
    /// Moves every edge inward by `d` pixels, outward when it is negative, without any clamping.
    IRect insetBy(int64_t d) const;

    QRectF rectF() const;
    QString description() const; ///< For example "(10,20 30x40)".

    bool operator==(const IRect&) const = default;
};

} // namespace qirn

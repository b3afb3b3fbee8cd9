#pragma once
#include <cstdint>
#include <optional>

class QTransform;

namespace qirn {

/// A whole-pixel move, a quarter turn, a mirror or any of these together: it brings every pixel to another place
/// and mixes none. It tells which source pixel a target pixel shows.
struct PixelMap {
    // Each of the two rows holds one 1 or -1 and one 0.
    int xx = 1; ///< source x = xx * x + xy * y + x0
    int xy = 0;
    int yx = 0; ///< source y = yx * x + yy * y + y0
    int yy = 1;
    int64_t x0 = 0;
    int64_t y0 = 0;

    /// The map of a transform from source to target coordinates, in which pixels are unit squares; nothing when the
    /// transform would mix pixels. A quarter turn about the center of an odd by an even number of pixels would land
    /// between pixels: it is moved by half a pixel, so that it stays a copy.
    static std::optional<PixelMap> fromTransform(const QTransform& toTarget);
    static PixelMap moved(int64_t dx, int64_t dy) { return {1, 0, 0, 1, -dx, -dy}; }

    int64_t sourceX(int64_t x, int64_t y) const { return xx * x + xy * y + x0; }
    int64_t sourceY(int64_t x, int64_t y) const { return yx * x + yy * y + y0; }
    bool isMove() const { return xx == 1 && yy == 1; }
    /// From source to target pixels.
    PixelMap inverse() const;
    /// Writes the target pixels from (0, 0) to before (width, height), `target` being the first. `source` is where
    /// the source pixel of target pixel (0, 0) lies; both distances are in bytes from one row to the next.
    void copy(const uint8_t* source, int64_t sourceRowBytes, uint8_t* target, int64_t targetRowBytes,
              int64_t width, int64_t height) const;
};

} // namespace qirn

#pragma once
#include <cstdint>

#include <QPainterPath>

namespace qirn {

enum class Antialias { no, yes };

/// Fills a path (canvas coordinates, y down, non-zero winding) into a mask of `width` x `height` bytes, top row
/// first, that holds zeros before. With antialiasing a byte is the pixel's covered area from 0 to 255; without,
/// it is 255 where the path covers the pixel's centre and otherwise 0.
void fillPathCoverage(const QPainterPath& path, Antialias antialias, uint8_t* mask, int64_t width,
                      int64_t height);

} // namespace qirn

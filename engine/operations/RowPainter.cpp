#include "operations/RowPainter.h"

#include "platform/FloatPixel.h"

namespace qirn {

namespace {

// Pixels are read as fractions from 0 to 1 and written back the same way.

FloatPixel readUnits(const uint8_t* pixel) {
    return readPixel(pixel) / 255;
}

void writeUnits(uint8_t* pixel, FloatPixel units) {
    writePixel(pixel, units * 255);
}

void paintOver(FloatPixel color, float coverage, uint8_t* pixel) {
    writeUnits(pixel, coverage * color + (1 - coverage) * readUnits(pixel));
}

/// The fourth channel is drawn towards itself.
void paintWithinAlpha(FloatPixel color, float coverage, uint8_t* pixel) {
    if (pixel[3] == 0) return;
    const FloatPixel old = readUnits(pixel);
    writeUnits(pixel, old + coverage * (old[3] * color - old));
}

template <auto kPaint>
void paintAll(const float* colors, const float* coverage, uint8_t* pixels, int64_t count) {
    for (int64_t i = 0; i < count; ++i) kPaint(loadPixel(colors + i * 4), coverage[i], pixels + i * 4);
}

} // namespace

void paintRow(AlphaLock lock, const float* colors, const float* coverage, uint8_t* pixels, int64_t count) {
    const auto paint = lock == AlphaLock::yes ? paintAll<paintWithinAlpha> : paintAll<paintOver>;
    paint(colors, coverage, pixels, count);
}

} // namespace qirn

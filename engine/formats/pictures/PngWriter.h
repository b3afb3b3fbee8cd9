#pragma once
#include "platform/Progress.h"

#include <cstdint>
#include <functional>

#include <QByteArray>
#include <QImage>

namespace qirn {

/// A picture by its rows, in the one pixel format, so that it need not lie in memory as a whole.
struct PictureRows {
    int64_t width = 0;
    int64_t height = 0;
    /// Where the pixels of row `y` are: in memory that lasts, or in `room`, which holds a row. Called on any thread.
    std::function<const uint8_t*(int64_t y, uint8_t* room)> row;
};
PictureRows rowsOf(const QImage& picture); ///< Borrows the picture, which is in the one pixel format.

enum class PngAlpha { whereNeeded, always };

/// A PNG, every pixel exact: 8 bits a channel, marked as sRGB; the resolution and no other mark. A resolution that PNG
/// cannot hold is left out. The bytes do not depend on the number of threads.
QByteArray pngBytes(const PictureRows& picture, PngAlpha alpha, double dpi, const Progress& progress = {});
/// The same of a picture in the one pixel format, without alpha where all is opaque.
QByteArray pngBytes(const QImage& picture, double dpi, const Progress& progress = {});

} // namespace qirn

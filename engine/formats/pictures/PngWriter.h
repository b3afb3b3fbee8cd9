#pragma once
#include "platform/Progress.h"

#include <QByteArray>
#include <QImage>

namespace qirn {

/// A PNG of a picture in the one pixel format, every pixel exact: 8 bits a channel, without alpha where all is opaque; the
/// resolution and no other mark. A resolution that PNG cannot hold is left out. The bytes do not depend on the number of
/// threads.
QByteArray pngBytes(const QImage& picture, double dpi, const Progress& progress = {});

} // namespace qirn

#pragma once
#include <cstdint>

#include <QImage>
#include <QSize>

namespace qirn::ImageExport {

/// The sides of a picture reduced so that the larger one is at most `maxSide`: cut to whole pixels, at least 1,
/// never enlarged.
QSize scaledSize(int64_t width, int64_t height, int64_t maxSide);

/// The picture at `scaledSize`, each pixel the exact average of the area that it stands for; the image itself
/// where it is not larger.
QImage scaled(const QImage& image, int64_t maxSide);

} // namespace qirn::ImageExport

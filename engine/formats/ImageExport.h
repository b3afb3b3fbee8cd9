#pragma once
#include "platform/DescribedError.h"

#include <cstdint>
#include <optional>

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace qirn {

/// A picture that could not be turned into a file's bytes, or bytes that are no picture.
class ExportError : public DescribedError {
public:
    static ExportError
    cannotEncode(const QString& formatName); ///< As the user reads it in the list of formats.
    static ExportError cannotRead();

private:
    using DescribedError::DescribedError;
};

/// Finished pictures as images and as file bytes.
namespace ImageExport {

/// A PNG with its resolution noted; nothing for a null image.
std::optional<QByteArray> pngData(const QImage& image, double dpi);

/// The sides of a picture reduced so that the larger one is at most `maxSide`: cut to whole pixels, at least 1,
/// never enlarged.
QSize scaledSize(int64_t width, int64_t height, int64_t maxSide);

/// The picture at `scaledSize`, each pixel the exact average of the area that it stands for; the image itself
/// where it is not larger.
QImage scaled(const QImage& image, int64_t maxSide);

} // namespace ImageExport

} // namespace qirn

#pragma once
#include "core/RGBABuffer.h"
#include "platform/DescribedError.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace qirn {

class PaintDocument;

/// What a picture can be saved as beside the native document, in the order of the list that a user chooses from.
enum class ExportFormat { png, jpeg, tiff, psdLayered, psdFlat };

struct ExportFormatRow {
    ExportFormat format;
    const char* id;          ///< As settings store it.
    const char* displayName; ///< English source text.
    const char* fileExtension;
};

inline constexpr std::array kExportFormats{
    ExportFormatRow{ExportFormat::png, "png", QT_TRANSLATE_NOOP("ExportFormat", "PNG (keeps transparency)"),
                    "png"},
    ExportFormatRow{ExportFormat::jpeg, "jpeg", QT_TRANSLATE_NOOP("ExportFormat", "JPEG (photos, smallest)"),
                    "jpg"},
    ExportFormatRow{ExportFormat::tiff, "tiff", QT_TRANSLATE_NOOP("ExportFormat", "TIFF (print, lossless)"),
                    "tiff"},
    ExportFormatRow{ExportFormat::psdLayered, "psdLayered",
                    QT_TRANSLATE_NOOP("ExportFormat", "Photoshop PSD (layers kept)"), "psd"},
    ExportFormatRow{ExportFormat::psdFlat, "psdFlat",
                    QT_TRANSLATE_NOOP("ExportFormat", "Photoshop PSD (flattened)"), "psd"},
};

constexpr const ExportFormatRow& rowOf(ExportFormat format) {
    return kExportFormats[static_cast<std::size_t>(format)];
}
QString displayName(ExportFormat format); ///< In the user's language.

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

/// The finished picture, without hidden layers, as the bytes of a file that notes the document's resolution and nothing
/// else. JPEG alone asks for a quality, brought into 0.05 to 1, and for the colour under what is transparent. Runs where
/// the document is owned; throws ExportError.
QByteArray data(const PaintDocument& doc, ExportFormat format, double jpegQuality,
                const PaintColor& jpegBackground);

/// The picture laid over an opaque colour, whose own alpha is not looked at.
std::shared_ptr<RGBABuffer> onBackground(const RGBABuffer& picture, const PaintColor& background);

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

#pragma once
#include "core/PaintEngine.h"
#include "formats/openraster/OpenRaster.h"
#include "formats/pictures/WebPWriter.h"
#include "platform/Progress.h"
#include "platform/RowOrder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <QByteArray>
#include <QString>

namespace qirn {

class PaintDocument;
struct PaintColor;

/// What a picture can be saved as beside the native document, in the order of the list that a user chooses from.
enum class ExportFormat { png, jpeg, tiff, webp, webpLossy, openRaster, psdLayered, psdFlat };

/// What formats ask for that lose something.
struct LossyOptions {
    double quality;               ///< Brought into 0.05 to 1.
    const PaintColor& background; ///< Under what is transparent; its own alpha is not looked at.
};

/// The whole file of a document's finished picture; nothing where the format or the memory does not hold it.
using ExportEncoder = std::optional<QByteArray> (*)(const PaintDocument& doc, const LossyOptions& lossy,
                                                    const Progress& progress);
namespace ExportEncoders {
std::optional<QByteArray> png(const PaintDocument& doc, const LossyOptions& lossy, const Progress& progress);
std::optional<QByteArray> jpeg(const PaintDocument& doc, const LossyOptions& lossy, const Progress& progress);
std::optional<QByteArray> tiff(const PaintDocument& doc, const LossyOptions& lossy, const Progress& progress);
std::optional<QByteArray> webp(const PaintDocument& doc, const LossyOptions& lossy, const Progress& progress);
std::optional<QByteArray> webpLossy(const PaintDocument& doc, const LossyOptions& lossy,
                                    const Progress& progress);
std::optional<QByteArray> openRaster(const PaintDocument& doc, const LossyOptions& lossy,
                                     const Progress& progress);
std::optional<QByteArray> psdLayered(const PaintDocument& doc, const LossyOptions& lossy,
                                     const Progress& progress);
std::optional<QByteArray> psdFlat(const PaintDocument& doc, const LossyOptions& lossy,
                                  const Progress& progress);
} // namespace ExportEncoders

struct ExportFormatRow {
    ExportFormat format;
    const char* id;          ///< As settings store it.
    const char* displayName; ///< English source text, as the next.
    const char* explanation; ///< What the format is good for, in a sentence or two.
    const char* fileExtension;
    ExportEncoder encode;
    bool asksQuality = false;
    bool asksBackground = false; ///< It has no transparency.
    int64_t longestSide = PaintEngine::maxCanvasSide;
    /// What of a document other programs may show in another way, in words; null: nothing of any.
    QString (*shownDifferently)(const PaintDocument& doc) = nullptr;
};

inline constexpr std::array kExportFormats{
    ExportFormatRow{
        ExportFormat::png, "png", QT_TRANSLATE_NOOP("ExportFormat", "PNG (keeps transparency)"),
        QT_TRANSLATE_NOOP("ExportFormat",
                          "Lossless. Keeps transparent areas. Best for artwork, logos and the web."),
        "png", ExportEncoders::png},
    ExportFormatRow{ExportFormat::jpeg, "jpeg", QT_TRANSLATE_NOOP("ExportFormat", "JPEG (photos, smallest)"),
                    QT_TRANSLATE_NOOP("ExportFormat",
                                      "Smallest files for photos and sharing. JPEG has no transparency, so "
                                      "see-through areas get a background color."),
                    "jpg", ExportEncoders::jpeg, true, true},
    ExportFormatRow{
        ExportFormat::tiff, "tiff", QT_TRANSLATE_NOOP("ExportFormat", "TIFF (print, lossless)"),
        QT_TRANSLATE_NOOP("ExportFormat", "Lossless (LZW) with the canvas DPI — good for print shops."),
        "tiff", ExportEncoders::tiff},
    ExportFormatRow{
        ExportFormat::webp, "webp", QT_TRANSLATE_NOOP("ExportFormat", "WebP (web, lossless)"),
        QT_TRANSLATE_NOOP("ExportFormat",
                          "Lossless and smaller than PNG. Keeps transparent areas. For sides of up to "
                          "16,383 pixels."),
        "webp", ExportEncoders::webp, false, false, kLongestWebPSide},
    ExportFormatRow{
        ExportFormat::webpLossy, "webpLossy", QT_TRANSLATE_NOOP("ExportFormat", "WebP (web, smallest)"),
        QT_TRANSLATE_NOOP("ExportFormat",
                          "Smallest files for the web. Keeps transparent areas. For sides of up to 16,383 "
                          "pixels."),
        "webp", ExportEncoders::webpLossy, true, false, kLongestWebPSide},
    ExportFormatRow{
        ExportFormat::openRaster, "openRaster", QT_TRANSLATE_NOOP("ExportFormat", "OpenRaster (layers kept)"),
        QT_TRANSLATE_NOOP("ExportFormat",
                          "Opens in Krita, GIMP and MyPaint with your layers: pixels, names, opacity, hidden "
                          "layers and most blend modes are kept, in Krita and MyPaint clipping as well."),
        "ora", ExportEncoders::openRaster, false, false, PaintEngine::maxCanvasSide,
        OpenRaster::shownDifferently},
    ExportFormatRow{
        ExportFormat::psdLayered, "psdLayered",
        QT_TRANSLATE_NOOP("ExportFormat", "Photoshop PSD (layers kept)"),
        QT_TRANSLATE_NOOP(
            "ExportFormat",
            "Opens in Photoshop, Affinity, GIMP, Krita, Procreate and ibis Paint with your layers: "
            "pixels, names, opacity, blend modes, hidden layers and clipping are kept. Text and "
            "shapes are already pixels."),
        "psd", ExportEncoders::psdLayered},
    ExportFormatRow{ExportFormat::psdFlat, "psdFlat",
                    QT_TRANSLATE_NOOP("ExportFormat", "Photoshop PSD (flattened)"),
                    QT_TRANSLATE_NOOP("ExportFormat", "One flattened picture in Photoshop format."), "psd",
                    ExportEncoders::psdFlat},
};
static_assert(isInOrder(kExportFormats, &ExportFormatRow::format));

constexpr const ExportFormatRow& rowOf(ExportFormat format) {
    return kExportFormats[static_cast<std::size_t>(format)];
}
QString displayName(ExportFormat format); ///< In the user's language, as the next.
QString explanation(ExportFormat format);

} // namespace qirn

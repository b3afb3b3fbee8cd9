#pragma once
#include <array>
#include <cstddef>

#include <QString>

namespace qirn {

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

} // namespace qirn

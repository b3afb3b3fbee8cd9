#pragma once
#include "formats/ExportFormat.h"
#include "formats/ImageImport.h"
#include "platform/Progress.h"
#include "platform/files/FileStamp.h"

#include <QString>

namespace qirn {

struct PaintColor;

struct ReadPicture : ImageImport::Imported {
    bool isDocument = false; ///< By its content: a save may take its place.
    FileStamp stamp;
};
/// Any file that can be opened. Throws ReadError, or the format layer's typed error.
ReadPicture readPicture(const QString& path, const Progress& progress);

/// The quality that a user can choose for an export, up to 1, and the one that stands there first.
inline constexpr double kLeastQuality = 0.3, kUsualQuality = 0.9;

/// Writes a copy of a picture in another format, atomically. On any thread where nobody writes to the document, as to a
/// draft. Throws ExportError or FileError.
void writeExported(const PaintDocument& picture, const QString& path, ExportFormat format, double quality,
                   const PaintColor& background, const Progress& progress);

} // namespace qirn

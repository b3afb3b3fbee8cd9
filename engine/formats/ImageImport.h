#pragma once
#include "core/PaintDocument.h"
#include "formats/common/DecodedPicture.h"
#include "formats/common/ImportRemarks.h"
#include "platform/Progress.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <QString>

namespace qirn::ImageImport {

struct Imported {
    std::unique_ptr<PaintDocument> document;
    ImportRemarks remarks; ///< What of the file was lost.
};
/// From the bytes of any file that can be opened, told apart by content. Throws PaintFileError for damage behind a native
/// document's sound manifest, PSDFile::PSDError for a Photoshop file that was saved without a picture of what its layers
/// show, otherwise ExportError.
Imported imported(std::span<const uint8_t> file, const Progress& progress = {});
/// The document alone; the extension is not looked at.
std::unique_ptr<PaintDocument> document(std::span<const uint8_t> file, const QString& fileExtension);

/// The picture of a file other than a native document; nothing when it is none, is damaged beyond use, has a side of
/// more than 30,000 pixels, or claims a size that its bytes cannot hold. Throws PSDFile::PSDError as above.
std::optional<DecodedPicture> decode(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace qirn::ImageImport

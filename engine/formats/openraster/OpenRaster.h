#pragma once
#include "formats/common/DecodedPicture.h"
#include "formats/common/ImportRemarks.h"
#include "platform/Progress.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <QByteArray>
#include <QString>

namespace qirn {

class PaintDocument;

/// OpenRaster, by which painting programs exchange layers: a ZIP archive of "mimetype", which comes first and is stored,
/// "stack.xml", the list of the layers, a PNG for each, the finished picture and a thumbnail. docs/formats.md says what of
/// the format is written and read.
namespace OpenRaster {

/// By its first bytes, which are those of any ZIP archive.
bool isArchive(std::span<const uint8_t> file);

/// The finished picture, with alpha, and the same within `kThumbnailSide` pixels, both as PNG.
struct Previews {
    QByteArray finished;
    QByteArray thumbnail;
};
inline constexpr int64_t kThumbnailSide = 256;

/// The whole file; the same bytes on any number of threads.
QByteArray write(const PaintDocument& doc, const Previews& previews, const Progress& progress = {});

/// What of a document other programs may show in another way, in words for the user; empty where there is nothing.
QString shownDifferently(const PaintDocument& doc);

/// The document with its layers and a fresh history; null where the list of layers is missing, damaged or claims more than
/// the file can hold. Beyond that nothing is refused: a layer that cannot be read is empty. `remarks`, if given, becomes
/// what does not show as it was made.
std::unique_ptr<PaintDocument> read(std::span<const uint8_t> file, ImportRemarks* remarks = nullptr,
                                    const Progress& progress = {});

/// The finished picture that a file keeps beside its layers.
std::optional<DecodedPicture> finishedPicture(std::span<const uint8_t> file, const Progress& progress = {});

} // namespace OpenRaster

} // namespace qirn

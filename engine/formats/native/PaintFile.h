#pragma once
#include "core/Layer.h"
#include "core/OnionSkin.h"
#include "core/TileGrid.h"
#include "formats/common/FormatErrors.h"
#include "formats/native/PaintFileManifest.h"
#include "platform/Progress.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QString>

namespace qirn {

class PaintDocument;

/// The content of a document that goes into a file, at one moment. It shares the document's frozen tiles, so that it
/// may be read on any thread while the document is painted on.
struct DocumentSnapshot {
    TileGrid grid;
    double dpi = 72;
    std::vector<LayerState> layers; ///< From the bottom.
    int64_t active = 0;
    OnionSkin onion;
};

/// Freezes every tile and copies no pixels. On the thread that owns the document.
DocumentSnapshot snapshot(PaintDocument& doc);

/// The picture as it was last committed, without the stroke or preview that is under way; its tiles are frozen.
DocumentSnapshot snapshotOfLastCommit(const PaintDocument& doc);

/// The layered document file (docs/formats.md has it byte by byte):
///
///     0       7   "QIRNPNT"
///     7       1   1
///     8       4   M, little-endian: bytes of the manifest
///     12      M   manifest: JSON
///     12 + M      tiles, then the preview as PNG
namespace PaintFile {

inline constexpr const char* fileExtension = "qirnpaint";
inline constexpr const char* typeIdentifier = "example.qirnpaint.qirnpaint";
inline constexpr int64_t kPreviewSide = 320; ///< Pixels on the larger side of a preview.

/// The whole file. `saved` is the moment that it notes, now if none is given: equal pictures with an equal moment
/// give equal bytes, on any number of threads.
QByteArray encode(const DocumentSnapshot& snapshot, int64_t thumbnailSide,
                  std::optional<QDateTime> saved = {}, const Progress& progress = {});
QByteArray encode(PaintDocument& doc, std::optional<QDateTime> saved = {});

/// The document with a fresh history; throws PaintFileError.
std::unique_ptr<PaintDocument> decode(std::span<const uint8_t> file, const Progress& progress = {});

/// What can still be read of a damaged document.
struct Salvaged {
    std::unique_ptr<PaintDocument> document; ///< With a fresh history; a lost tile is transparent.
    std::vector<int64_t> lostTiles;          ///< How many, for each layer of the file, from the bottom.
};
/// As `decode`, but for tiles that are damaged or not all there, as in a file that was cut. Throws PaintFileError where
/// not even the manifest can be read.
Salvaged salvage(std::span<const uint8_t> file, const Progress& progress = {});

struct LocatedManifest {
    Manifest manifest;
    int64_t blobOffset = 0; ///< Of the first byte behind the manifest, from the start of the file.
};
LocatedManifest manifestOf(std::span<const uint8_t> file); ///< Throws PaintFileError.

/// The stored preview, without reading a tile; nothing for a damaged file or one that has none.
std::optional<QImage> thumbnailOf(std::span<const uint8_t> file);

struct Info {
    int64_t width = 0; ///< As the file claims, in no known range.
    int64_t height = 0;
    int64_t layers = 0;
};
/// Nothing for what is not a native document with a sound manifest.
std::optional<Info> infoOf(std::span<const uint8_t> file);

} // namespace PaintFile

} // namespace qirn

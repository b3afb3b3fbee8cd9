#pragma once
#include "core/OnionSkin.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <QDateTime>
#include <QString>
#include <QUuid>

namespace qirn::PaintFile {

inline constexpr std::array<uint8_t, 8> magic{'Q', 'I', 'R', 'N', 'P', 'N', 'T', 1};
inline constexpr int64_t kHeaderBytes = 12; ///< In front of the manifest.

/// The length of the manifest as the header states it; nothing for what does not begin as a document.
std::optional<int64_t> manifestLength(std::span<const uint8_t> file);

/// Where the bytes of a tile, or of the preview, lie.
struct TileEntry {
    int64_t i = 0;                 ///< Slot in the layer: row * columns + column; -1 for the preview.
    int64_t o = 0;                 ///< Offset from the first byte behind the manifest.
    int64_t n = 0;                 ///< Stored bytes.
    int64_t c = 0;                 ///< One of the codings below.
    std::optional<int64_t> k = {}; ///< `checksumOf` the stored bytes; absent in files of older versions.
};
inline constexpr int64_t kCodingRaw = 0;
inline constexpr int64_t kCodingLzfse = 1;
inline constexpr int64_t kCodingPng = 2; ///< The preview only.

struct LayerEntry {
    QUuid id;
    QString name;
    double opacity = 1;
    QString blend; ///< A blend mode's identifier; one that is not known reads as normal.
    bool visible = true;
    bool locked = false;
    bool alphaLocked = false;
    bool clipping = false;
    std::vector<TileEntry> tiles; ///< Written with rising `i`.
};

/// The JSON object at the head of a native document, as plain values. Reading checks presence and type of every
/// field and nothing else: ranges are judged by whoever uses them.
struct Manifest {
    QString format = QStringLiteral("Qirn Paint document");
    int64_t formatVersion = 1;
    QString app = QStringLiteral("Qirn Paint by Tessaly Works (Qirn) - https://qirnpaint.example");
    int64_t width = 0;  ///< Canvas pixels.
    int64_t height = 0; ///< Canvas pixels.
    double dpi = 72;
    int64_t active = 0;             ///< Index in `layers`.
    std::vector<LayerEntry> layers; ///< From the bottom.
    std::optional<OnionSkin> onion;
    std::optional<TileEntry> thumbnail;
    std::optional<QDateTime> saved; ///< UTC, whole seconds.
};

/// Compact UTF-8 with the keys in the order of the fields; what is absent has no key.
std::string manifestText(const Manifest& manifest);

/// Nothing for text that is not JSON, lacks a required key or has a value of the wrong type. Unknown keys are
/// passed over.
std::optional<Manifest> parseManifest(std::span<const uint8_t> text);

/// The preview's entry in a manifest that comes in pieces, of which an empty one is its end, and is not held. Nothing for
/// text that is not JSON, and where there is no such entry.
std::optional<TileEntry> previewEntryIn(const std::function<std::span<const uint8_t>()>& nextPiece);

/// The bytes that an entry names in what lies behind the manifest; nothing when they are not all there.
std::optional<std::span<const uint8_t>> storedBytes(std::span<const uint8_t> blob, const TileEntry& entry);

/// CRC-32 as zlib and PNG have it.
int64_t checksumOf(std::span<const uint8_t> bytes);
/// False where the bytes are not those that the entry was written for; an entry without a checksum cannot tell.
bool matches(std::span<const uint8_t> bytes, const std::optional<int64_t>& checksum);

} // namespace qirn::PaintFile

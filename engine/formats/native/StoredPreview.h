#pragma once
#include "core/RGBABuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include <QString>

namespace qirn {

/// Fills the target with the bytes of a file from the offset on; how many there were, fewer where the file ends.
using FileBytes = std::function<std::size_t(int64_t offset, std::span<uint8_t> target)>;

/// The preview that a document's file holds, made without Qt Gui. Of the file only header, manifest and preview are read,
/// the manifest piece by piece: neither time nor memory grows with the picture, and memory with nothing. Null for what is
/// no document, is damaged there or has none, for a manifest above 64 MB or with more than 1 MB in one word, and for a
/// preview of more than 4 MB or with a side above 320 pixels. What else is in the manifest is not judged. On any thread.
std::shared_ptr<RGBABuffer> storedPreview(const FileBytes& file);
std::shared_ptr<RGBABuffer> storedPreview(const QString& path); ///< Throws ReadError.

} // namespace qirn

#pragma once
#include "brush/BrushSettings.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <QByteArray>

namespace qirn {

/// The text of a brush file and of the user's own library: a JSON array of brush records, without a header.
namespace BrushFile {

QByteArray encode(std::span<const BrushSettings> brushes); ///< Pretty-printed UTF-8.

/// The whole list or nothing: one record that cannot be read refuses the file.
std::optional<std::vector<BrushSettings>> decode(std::span<const uint8_t> text);

} // namespace BrushFile

} // namespace qirn

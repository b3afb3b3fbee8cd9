#pragma once
#include "core/IRect.h"
#include "core/Tile.h"
#include "core/TileGrid.h"
#include "platform/Progress.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace qirn::PSDFile {

/// One channel as it lies in a file: rows as they are, or packed.
struct StoredPlane {
    /// Packed bytes of each row, two bytes a count; empty for rows as they are.
    std::span<const uint8_t> counts;
    std::span<const uint8_t> rows; ///< All of them and no more.
    int64_t w = 0;                 ///< Pixels of a row, at least 1.
};

/// A rectangle of pixels anywhere inside or outside of the canvas, of any size that 32 bits can express.
struct StoredPicture {
    IRect rect; ///< Not empty.
    /// Straight red, green, blue; alpha, opaque without it.
    std::array<std::optional<StoredPlane>, 4> planes;
};

using PlacedTile = std::pair<int64_t, TileRef>; // slot and tile

/// The parts of pictures that lie in the canvas as tiles, a list for each picture, without those that are transparent.
/// Tiles of one color are made once and shared. `unused` planes are walked only. In parallel; throws BEReader::Short
/// for packed rows that end too early, wherever they lie.
///
/// Pixels are written from the file's rows straight to tiles, and a tile is allocated only when a second color is
/// found in it: however large a rectangle claims to be, memory is taken for the result only.
std::vector<std::vector<PlacedTile>> decodePictures(std::span<const StoredPicture> pictures,
                                                    std::span<const StoredPlane> unused, const TileGrid& grid,
                                                    const Progress& progress);

} // namespace qirn::PSDFile

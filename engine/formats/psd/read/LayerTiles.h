#pragma once
#include "core/IRect.h"
#include "core/Tile.h"
#include "core/TileGrid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace qirn::PSDFile {

/// One channel as it lies in a file: rows as they are, or packed.
struct StoredPlane {
    std::span<const uint8_t>
        counts; ///< Packed bytes of each row, two bytes a count; empty for rows as they are.
    std::span<const uint8_t> rows; ///< All of them and no more.
    int64_t w = 0;                 ///< Pixels of a row, at least 1.
};

/// A rectangle of pixels, anywhere round the canvas and of any size that 32 bits can give.
struct StoredPicture {
    IRect rect; ///< Not empty.
    std::array<std::optional<StoredPlane>, 4>
        planes; ///< Straight red, green, blue; alpha, opaque without it.
};

using PlacedTile = std::pair<int64_t, TileRef>; // slot and tile

/// The parts of pictures that lie in the canvas as tiles, a list for each picture, without those that are transparent.
/// Tiles of one colour are made once and shared. `unused` planes are walked only. In parallel; throws BEReader::Short
/// for packed rows that end too early, wherever they lie.
///
/// Pixels go from the file's rows straight to tiles, of which one is made when a second colour is met in it: however
/// large a rectangle claims to be, no memory is taken but for what comes out.
std::vector<std::vector<PlacedTile>> decodePictures(std::span<const StoredPicture> pictures,
                                                    std::span<const StoredPlane> unused,
                                                    const TileGrid& grid);

} // namespace qirn::PSDFile

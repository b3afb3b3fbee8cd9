#pragma once
#include "core/Layer.h"
#include "core/TileGrid.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PSDHeader.h"
#include "formats/psd/read/PSDLosses.h"
#include "platform/Progress.h"

#include <cstdint>
#include <vector>

namespace qirn::PSDFile {

// The parts of a Photoshop file that is read with its layers. All throw PSDError, PaintFileError or BEReader::Short.

/// The header, and on to the image resources.
PSDHeader readLayeredHeader(BEReader& in);

/// `count` records and then the pixels of each; groups and dividers are left out.
std::vector<LayerRef> readLayers(BEReader in, int64_t count, const TileGrid& grid, Losses& losses,
                                 const Progress& progress);

/// The finished picture, which ends the file, as one layer, "Background".
LayerRef readFinishedPicture(BEReader& in, const PSDHeader& head, const TileGrid& grid,
                             const Progress& progress);

} // namespace qirn::PSDFile

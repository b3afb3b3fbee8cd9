#pragma once
#include "formats/common/ByteReader.h"
#include "formats/psd/write/PlanePacker.h"

namespace qirn::PSDFile {

// The parts of a Photoshop file, in their order.

/// Header, no color mode data, and the resources.
void writeHead(BEWriter& out, const PaintDocument& doc);

/// The section of layers; throws TooLarge.
void writeLayers(BEWriter& out, const PaintDocument& doc, PlanePacker& packer, const Progress& progress);

void writeFinishedPicture(BEWriter& out, PlanePacker& packer, Matte matte, const Progress& progress);

} // namespace qirn::PSDFile

#pragma once
#include "formats/pictures/tiff/TiffShape.h"

#include <cstdint>
#include <span>

namespace qirn {

class PictureBuilder;

/// What reading a file of so many bytes may take at most, besides the picture that comes out.
int64_t tiffWorkingMemory(std::size_t fileBytes);

/// Gives the rows in the layout of the shape, from the first as stored on; stops where the data ends or is damaged, and
/// gives none of a file whose tiles, or whatever else has to be unpacked in one piece, take more than the above.
/// `opened` is the file at its first picture.
void readTiffRows(std::span<const uint8_t> file, tiff* opened, const TiffShape& shape,
                  PictureBuilder& builder);

} // namespace qirn

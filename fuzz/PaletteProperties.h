#pragma once
#include "MemoryWatch.h"
#include "formats/palettes/PaletteLibrary.h"

#include <cstdint>
#include <span>

namespace qirn::fuzz {

/// Reads a palette file under this name and checks what holds of every palette: it is refused in one way only, is
/// the user's own, has colours in range, and comes back from each form that it can be written in.
void checkPaletteFile(std::span<const uint8_t> file, const char* name);

} // namespace qirn::fuzz

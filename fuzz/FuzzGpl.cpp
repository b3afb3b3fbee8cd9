// GIMP's palettes.
#include "PaletteProperties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    qirn::fuzz::checkPaletteFile({data, size}, "palette.gpl");
    return 0;
}

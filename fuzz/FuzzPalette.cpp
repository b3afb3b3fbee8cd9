// A palette file, of the kind that its name QIRN_PALETTE_FILE says, is refused in one way only. What is read is the
// user's own, has colours in range, and comes back from each form that it can be written in.
#include "MemoryWatch.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

using namespace qirn;

namespace {

bool isWithin(const PaintColor& c) {
    const auto isUnit = [](double v) { return v >= 0 && v <= 1; };
    return isUnit(c.r) && isUnit(c.g) && isUnit(c.b) && isUnit(c.a);
}

/// A form may bring names into its own shape, but keeps every colour in 8 bits, and what it gave stays as it is.
template <class Write, class Read>
void checkForm(const Palette& palette, std::size_t most, Write write, Read read) {
    const Palette once = read(write(palette)), twice = read(write(once)); // a code where no name was left
    require(once.colors.size() == std::min(palette.colors.size(), most));
    for (std::size_t i = 0; i < once.colors.size(); ++i)
        require(once.colors[i].color.hex() == palette.colors[i].color.hex());
    require(read(write(twice)).colors == twice.colors);
}

void checkCopies(const Palette& palette) {
    const auto stored = PaletteStore::decode(bytesOf(PaletteStore::encode({&palette, 1})));
    require(stored && stored->size() == 1 && stored->front() == palette);
    checkForm(palette, 65'535, PaletteLibrary::aco,
              [](const QByteArray& file) { return PaletteLibrary::readACO(bytesOf(file), {}); });
    checkForm(palette, palette.colors.size(), PaletteLibrary::gpl,
              [](const QString& text) { return PaletteLibrary::readGPL(text, {}); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    try {
        fuzz::MemoryWatch memory;
        const Palette palette = PaletteLibrary::read({data, size}, QStringLiteral(QIRN_PALETTE_FILE));
        memory.requireWithin(static_cast<int64_t>(palette.colors.size() * sizeof(PaletteColor)));
        require(!palette.isBuiltIn && !palette.id.isNull() && !palette.colors.empty());
        for (const PaletteColor& entry : palette.colors) require(isWithin(entry.color));
        checkCopies(palette);
    } catch (const PaletteError& error) {
        require(!error.description().isEmpty());
    }
    return 0;
}

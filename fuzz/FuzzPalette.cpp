// A palette file, of the kind that its name QIRN_PALETTE_FILE says, is refused in one way only. What is read is the
// user's own, has colours in range, and comes back from each form that it can be written in.
#include "MemoryWatch.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include <QStringList>

using namespace qirn;

namespace {

bool isWithin(const PaintColor& c) {
    const auto isUnit = [](double v) { return v >= 0 && v <= 1; };
    return isUnit(c.r) && isUnit(c.g) && isUnit(c.b) && isUnit(c.a);
}

/// Equal in the 8 bits that files keep, with the code for a name where there was none.
bool isCopy(const std::vector<PaletteColor>& copy, std::span<const PaletteColor> colors,
            QString (*keptName)(const QString&)) {
    return std::equal(copy.begin(), copy.end(), colors.begin(), colors.end(),
                      [&](const auto& a, const auto& b) {
                          const QString expected = b.name.isEmpty() ? b.color.hex() : keptName(b.name);
                          return a.color.hex() == b.color.hex() && a.name == expected;
                      });
}

QString inSwatches(const QString& name) {
    return QString(name).remove(QChar(u'\0'));
}

/// Names in text lose line ends and what is white at the end, and blanks and tabs become one blank.
QString inText(const QString& name) {
    QString words;
    for (const QChar c : name) words += c == u'\n' || c == u'\r' || c == u'\t' ? QChar(u' ') : c;
    QString kept = words.split(u' ', Qt::SkipEmptyParts).join(u' ');
    while (!kept.isEmpty() && kept.back().isSpace()) kept.chop(1);
    return kept;
}

void checkCopies(const Palette& palette) {
    const auto stored = PaletteStore::decode(bytesOf(PaletteStore::encode({&palette, 1})));
    require(stored && stored->size() == 1 && stored->front() == palette);

    const QByteArray swatches = PaletteLibrary::aco(palette);
    const Palette fromSwatches = PaletteLibrary::readACO(bytesOf(swatches), palette.name);
    const auto kept = std::span(palette.colors).first(std::min<std::size_t>(palette.colors.size(), 65'535));
    require(isCopy(fromSwatches.colors, kept, inSwatches));
    const QByteArray again = PaletteLibrary::aco(fromSwatches);
    require(PaletteLibrary::aco(PaletteLibrary::readACO(bytesOf(again), {})) == again);

    const Palette fromText = PaletteLibrary::readGPL(PaletteLibrary::gpl(palette), {});
    require(isCopy(fromText.colors, palette.colors, inText));
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

#include "app/files/UserPalettes.h"

#include "app/desktop/shared/ThreeWayMerge.h"

#include <utility>

#include <QCoreApplication>

namespace qirn {

std::optional<UserPaletteFormat::Content> UserPaletteFormat::decode(std::span<const uint8_t> text) {
    auto palettes = PaletteStore::decode(text);
    if (palettes) giveEachItsOwnId(*palettes);
    return palettes;
}

QByteArray UserPaletteFormat::encode(const Content& palettes) {
    return PaletteStore::encode(palettes);
}

UserPaletteFormat::Content UserPaletteFormat::merged(const Content& base, const Content& ours,
                                                     Content theirs) {
    return mergedThreeWays(base, ours, std::move(theirs), &Palette::id);
}

Palette ownCopyOf(const Palette& palette) {
    Palette copy = palette;
    copy.id = QUuid::createUuid();
    copy.name = QCoreApplication::translate("qirn::UserPalettes", "%1 (my copy)").arg(palette.name);
    copy.isBuiltIn = false;
    return copy;
}

} // namespace qirn

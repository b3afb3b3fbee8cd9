#include "app/files/UserPalettes.h"

#include <QCoreApplication>

namespace qirn {

std::vector<Palette> UserPaletteFile::load() {
    std::vector<Palette> palettes;
    file_.load([&](std::span<const uint8_t> text) {
        const auto decoded = PaletteStore::decode(text);
        if (decoded) palettes = *decoded;
        return decoded.has_value();
    });
    return palettes;
}

void UserPaletteFile::save(const std::vector<Palette>& palettes) {
    file_.save(PaletteStore::encode(palettes));
}

Palette ownCopyOf(const Palette& palette) {
    Palette copy = palette;
    copy.id = QUuid::createUuid();
    copy.name = QCoreApplication::translate("qirn::UserPalettes", "%1 (my copy)").arg(palette.name);
    copy.isBuiltIn = false;
    return copy;
}

} // namespace qirn

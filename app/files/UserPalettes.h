#pragma once
#include "app/desktop/shared/SharedFile.h"
#include "formats/palettes/Palette.h"

#include <optional>
#include <span>
#include <vector>

namespace qirn {

/// How the file of the user's own palettes is read, written and merged, palette by palette.
struct UserPaletteFormat {
    using Content = std::vector<Palette>; ///< No two of the same id.
    static Content empty() { return {}; }
    static std::optional<Content> decode(std::span<const uint8_t> text);
    static QByteArray encode(const Content& palettes);
    static Content merged(const Content& base, const Content& ours, Content theirs);
};
using UserPaletteFile = SharedFile<UserPaletteFormat>;

/// A copy of a built-in palette as the user's own.
Palette ownCopyOf(const Palette& palette);

} // namespace qirn

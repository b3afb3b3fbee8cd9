#pragma once
#include "app/desktop/shared/SharedFile.h"
#include "brush/BrushSettings.h"

#include <optional>
#include <span>
#include <vector>

namespace qirn {

inline constexpr const char* kUserBrushCategory = "My Brushes";

/// How the file of the user's own presets is read, written and merged, preset by preset.
struct UserBrushFormat {
    using Content = std::vector<BrushSettings>; ///< No two of the same id.
    static Content empty() { return {}; }
    static std::optional<Content> decode(std::span<const uint8_t> text);
    static QByteArray encode(const Content& brushes);
    static Content merged(const Content& base, const Content& ours, Content theirs);
};
using UserBrushFile = SharedFile<UserBrushFormat>;

/// The presets of a brush file, as the user's own: each with a fresh id, so that none equals a preset that is there.
/// Nothing when the file as a whole cannot be read.
std::optional<std::vector<BrushSettings>> brushesToImport(std::span<const uint8_t> text);

} // namespace qirn

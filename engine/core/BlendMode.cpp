#include "core/BlendMode.h"

namespace qirn {

std::optional<BlendMode> blendModeWithId(std::string_view id) {
    for (const BlendModeRow& row : kBlendModes) {
        if (id == row.id) return row.mode;
    }
    return std::nullopt;
}

BlendMode blendModeFromPSD(std::string_view key) {
    for (const BlendModeRow& row : kBlendModes) {
        if (key == row.psdKey) return row.mode;
    }
    return BlendMode::normal;
}

} // namespace qirn

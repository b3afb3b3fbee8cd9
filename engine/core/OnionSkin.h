#pragma once
#include "core/PaintColor.h"

#include <cstdint>

namespace qirn {

/// The light-table view: the layers next to the active one show as ghosts on screen, never in the picture.
struct OnionSkin {
    bool enabled = false;
    int64_t before = 1;   ///< Layers below the active one that show.
    int64_t after = 1;    ///< Layers above it that show.
    double opacity = 0.4; ///< Strength of the nearest ghosts.
    bool tint = true;     ///< Color the ghosts.
    PaintColor beforeColor{0.95, 0.2, 0.25, 1};
    PaintColor afterColor{0.15, 0.75, 0.35, 1};

    bool operator==(const OnionSkin&) const = default;
};

} // namespace qirn

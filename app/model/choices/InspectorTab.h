#pragma once
#include <array>
#include <cstdint>

namespace qirn {

/// A panel of the column beside the canvas, of which one shows.
enum class InspectorTab : uint8_t { color, brush, palettes };

inline constexpr std::array<const char*, 3> kInspectorTabIDs{"color", "brush", "palettes"}; ///< As the store has them.

} // namespace qirn

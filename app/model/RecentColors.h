#pragma once
#include "core/PaintColor.h"

#include <vector>

namespace qirn {

inline constexpr std::size_t kRecentColors = 18;

/// The colour at the front, no two of the same red, green and blue, at most `kRecentColors`.
std::vector<PaintColor> withRecent(const std::vector<PaintColor>& recent, const PaintColor& color);

} // namespace qirn

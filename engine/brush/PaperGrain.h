#pragma once
#include <span>

namespace qirn {

/// The paper under textured brushes: one fixed square of noise that tiles without a seam.
namespace PaperGrain {

inline constexpr int size = 256; ///< Pixels on a side.

/// `size` x `size` values from 0 to 1, row by row, made once on first use. Any thread may read them.
std::span<const float> values();

} // namespace PaperGrain

} // namespace qirn

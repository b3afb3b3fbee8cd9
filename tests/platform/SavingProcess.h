#pragma once

namespace qirn::test {

// What a saving process ends with where that is no error's number; 0 when it saved.
inline constexpr int kOldFileHarmed = 254;
inline constexpr int kUnexpected = 253;

} // namespace qirn::test

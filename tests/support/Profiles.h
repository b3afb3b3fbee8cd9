#pragma once
#include <array>
#include <cstdint>

#include <QByteArray>

namespace qirn::test {

// Colour profiles as files embed them, made by the colour library from published numbers.
QByteArray srgbProfile();
QByteArray displayP3Profile();
QByteArray adobeRgbProfile();
QByteArray grayProfile(double gamma);
/// A press whose inks are a table: paper is white, cyan alone is `kPressCyan`, and black covers all.
QByteArray pressProfile();
inline constexpr std::array<uint8_t, 3> kPressCyan{30, 120, 200}; ///< sRGB

} // namespace qirn::test

#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include <QByteArray>

namespace qirn::test {

// Color profiles as files embed them.
QByteArray srgbProfile();
QByteArray displayP3Profile();
QByteArray adobeRgbProfile();
QByteArray grayProfile(double gamma);
/// 16-bit gray or RGB pixels as RGBA bytes, by the color library alone and without tables of its own.
std::vector<uint8_t> convertedByTheLibrary(const QByteArray& icc, const std::vector<uint16_t>& samples,
                                           int channels);
/// A press whose inks are a table: paper is white, cyan alone is `kPressCyan`, and black covers all.
QByteArray pressProfile();
inline constexpr std::array<uint8_t, 3> kPressCyan{30, 120, 200}; ///< sRGB

} // namespace qirn::test

#include "formats/common/SrgbBytes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace qirn {

namespace {

// Enough intervals that none holds two thresholds: these are at least 1 / (255 * 12.92) apart.
constexpr int kStretches = 4096;

struct Borders {
    std::array<float, 256> above{};              // by byte: threshold to the next byte; infinite for 255
    std::array<uint8_t, kStretches + 1> first{}; // the byte at the beginning of each stretch

    Borders() {
        for (int i = 0; i < 255; ++i) {
            const double v = (i + 0.5) / 255;
            above[static_cast<std::size_t>(i)] =
                static_cast<float>(v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
        }
        above[255] = std::numeric_limits<float>::infinity();
        for (int i = 0; i <= kStretches; ++i) {
            const float begin = static_cast<float>(i) / kStretches;
            const auto reached = std::upper_bound(above.begin(), above.end(), begin) - above.begin();
            first[static_cast<std::size_t>(i)] = static_cast<uint8_t>(reached);
        }
    }
};

} // namespace

uint8_t srgbByte(float light) {
    static const Borders borders;
    const float within = light > 0 ? std::min(light, 1.0f) : 0;
    const uint8_t byte = borders.first[static_cast<std::size_t>(within * kStretches)];
    return static_cast<uint8_t>(byte + (within >= borders.above[byte]));
}

} // namespace qirn

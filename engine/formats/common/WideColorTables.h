#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace qirn {

/// Converts 16-bit gray or RGB to 8-bit sRGB by tables. The color library takes ten times as long where it is exact.
class WideColorTables {
public:
    /// A conversion by the library: `count` pixels without alpha, from one buffer to another.
    using Transform = std::function<void(const void* from, void* to, int64_t count)>;

    /// Tables of `exact`, a conversion from 16-bit gray to RGBA bytes, for all values.
    static std::shared_ptr<const WideColorTables> ofGray(const Transform& exact);
    /// For profiles of one curve a channel and a matrix, as of displays, cameras and scanners. Both are measured
    /// through `linear`, which converts three floats a pixel to linear light with the primaries of sRGB. Null where
    /// samples of `exact`, from 16-bit RGB to RGBA bytes, differ from the tables.
    static std::shared_ptr<const WideColorTables> ofRgb(const Transform& exact, const Transform& linear);

    /// Straight RGBA; without alpha in `pixels` it is 255.
    void convert(const uint16_t* pixels, bool hasAlpha, uint8_t* rgba, int64_t count) const;

private:
    struct Shaped {
        std::array<std::vector<float>, 3> curves; ///< 0 to 1, by sample.
        std::array<std::array<float, 3>, 3> matrix;
        std::array<float, 3> black; ///< Light where all samples are 0.
    };
    bool agreesWith(const Transform& exact) const;

    std::vector<std::array<uint8_t, 4>> grays_; // by sample; empty for RGB
    Shaped shaped_;
};

} // namespace qirn

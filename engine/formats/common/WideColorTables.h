#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace qirn {

/// 16-bit grey or RGB to 8-bit sRGB by tables. The colour library, which is exact only where it computes every pixel
/// anew, takes ten times as long.
class WideColorTables {
public:
    /// The library's work: `count` pixels without alpha from one place to another.
    using Transform = std::function<void(const void* from, void* to, int64_t count)>;

    /// What `exact`, from 16-bit grey to RGBA bytes, gives for each value.
    static std::shared_ptr<const WideColorTables> ofGray(const Transform& exact);
    /// For colours that are a curve for each channel and one matrix, as those of displays, cameras and scanners: the
    /// two are found by `linear`, from three floats a pixel to three of linear light with the primaries of sRGB. Null
    /// where `exact`, from 16-bit RGB to RGBA bytes, shows that they are not all.
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

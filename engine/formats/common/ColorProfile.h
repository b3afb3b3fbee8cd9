#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace qirn {

class WideColorTables;

enum class ColorModel { gray, rgb, cmyk, lab };
enum class SampleType { u8, u16, f32 }; ///< f32 is for gray and RGB only.

/// How a file's pixels lie in memory: the channels of the color, then alpha where there is one, side by side and
/// straight, in the processor's byte order. Lab is coded as profiles do: L from 0 to 100, a and b from -128 to 127
/// with 0 at 128 (8 bits) or 32,896 (16 bits).
struct PixelLayout {
    ColorModel model = ColorModel::rgb;
    SampleType sample = SampleType::u8;
    bool hasAlpha = false;
    bool isInverted = false; ///< CMYK only: 0 is full ink, as Adobe's programs store it.

    bool operator==(const PixelLayout&) const = default;
    int colorChannels() const;
    int pixelBytes() const;
};

/// Turns a file's colors into sRGB. It is immutable: any number of threads may convert at once.
class ColorProfile {
public:
    /// From the bytes of an embedded ICC profile; nothing for a broken one or one of another color model, which the
    /// caller ignores. A profile that equals sRGB except for rounding leaves colors exactly as they are.
    static std::optional<ColorProfile> embedded(std::span<const uint8_t> icc, const PixelLayout& layout);
    /// For a file that says nothing: gray and RGB are sRGB, in 32 bits linear; the inks of CMYK are ideal; Lab is
    /// relative to D50.
    static ColorProfile standard(const PixelLayout& layout);
    /// By the places of the primaries and of white in the CIE diagram, and the power by which stored values become
    /// light (none: the curve of sRGB). Gray has only the latter. Nothing for numbers that describe no colors.
    struct Chromaticities {
        double whiteX, whiteY, redX, redY, greenX, greenY, blueX, blueY;
        bool operator==(const Chromaticities&) const = default;
    };
    static constexpr Chromaticities srgbChromaticities{0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06};
    static std::optional<ColorProfile> calibrated(const Chromaticities& places, std::optional<double> power,
                                                  const PixelLayout& layout);

    const PixelLayout& layout() const { return layout_; }
    /// Writes `count` pixels of 8-bit straight sRGB RGBA, rounded. `pixels` is aligned for its samples.
    void convert(const void* pixels, uint8_t* rgba, int64_t count) const;

private:
    explicit ColorProfile(const PixelLayout& layout) : layout_(layout) {}

    PixelLayout layout_;
    std::shared_ptr<void> transform_; // of the color library; null: plain formulas are used
    // its results for 16 bits as tables; null: the transform is used
    std::shared_ptr<const WideColorTables> tables_;
};

} // namespace qirn

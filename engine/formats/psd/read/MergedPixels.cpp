#include "formats/psd/read/MergedPixels.h"

#include "formats/common/ByteReader.h"
#include "formats/psd/read/PSDSections.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>

#include <QtEndian>

namespace qirn {

namespace {

constexpr int kPaletteColors = 256;

template <class Sample> constexpr double kFull = std::is_same_v<Sample, float> ? 1.0 : Sample(-1);
// a and b of Lab for a neutral color, in the coding of profiles.
template <class Sample> constexpr double kNeutral = sizeof(Sample) == 1 ? 128 : 32896;
// Tolerance for rounding of the test whether a color is too dark for a white backdrop.
template <class Sample> constexpr double kSlack = kFull<Sample> * 2 / 255;

constexpr float kBrightest = 65504; // largest value that is kept of a 32-bit sample

uint8_t sampleAt(const uint8_t* at, uint8_t) {
    return *at;
}
uint16_t sampleAt(const uint8_t* at, uint16_t) {
    return qFromBigEndian<uint16_t>(at);
}
float sampleAt(const uint8_t* at, float) {
    const auto value = std::bit_cast<float>(qFromBigEndian<uint32_t>(at));
    return value > 0 ? std::min(value, kBrightest) : 0; // NaN becomes black
}

uint8_t toSample(double value, uint8_t) {
    return static_cast<uint8_t>(value + 0.5);
}
uint16_t toSample(double value, uint16_t) {
    return static_cast<uint16_t>(value + 0.5);
}
float toSample(double value, float) {
    return static_cast<float>(value);
}

/// Photoshop's 16 bits put "no color" at 32,768, profiles at 32,896: both go from -128 to 127, in steps of 1/256
/// and of 1/257.
uint16_t inProfileCoding(uint16_t value) {
    return static_cast<uint16_t>(std::min(65535, (value * 257 + 128) / 256));
}

ColorModel modelOf(const PSDSections& sections) {
    switch (sections.header.mode) {
    case PSDColorMode::cmyk:
        return ColorModel::cmyk;
    case PSDColorMode::lab:
        return ColorModel::lab;
    case PSDColorMode::rgb:
    case PSDColorMode::indexed:
        return ColorModel::rgb;
    case PSDColorMode::multichannel: // inks; a single one is shown as gray
        return colorChannelsOf(sections.header) == 1 ? ColorModel::gray : ColorModel::cmyk;
    default:
        return ColorModel::gray;
    }
}

/// Samples of 32 bits are linear light, so a profile applies only if it is linear: one that turns 0.2 into about half
/// of sRGB's range.
bool isLinear(const ColorProfile& profile) {
    constexpr float kFifth = 0.214f;
    const std::array<float, 4> gray{kFifth, kFifth, kFifth, 1};
    std::array<uint8_t, 4> shown{};
    profile.convert(gray.data(), shown.data(), 1);
    return std::abs(shown[1] - 127) < 16;
}

ColorProfile profileFor(const PSDSections& sections, const PixelLayout& layout) {
    // The inks of a multichannel or duotone picture are not those of any profile.
    const bool mayBe =
        sections.header.mode != PSDColorMode::multichannel && sections.header.mode != PSDColorMode::duotone;
    auto profile = mayBe ? ColorProfile::embedded(sections.resources.profile, layout) : std::nullopt;
    if (profile && (layout.sample != SampleType::f32 || isLinear(*profile))) return *profile;
    return ColorProfile::standard(layout);
}

void premultiply(std::span<uint8_t> pixels) {
    for (std::size_t at = 0; at < pixels.size(); at += 4) {
        const int alpha = pixels[at + 3];
        for (std::size_t c = 0; alpha != 255 && c < 3; ++c)
            pixels[at + c] = static_cast<uint8_t>((pixels[at + c] * alpha + 127) / 255);
    }
}

} // namespace

MergedPixels::MergedPixels(const PSDSections& sections, Backdrop backdrop)
    : depth_(sections.header.depth),
      colors_(colorChannelsOf(sections.header)),
      hasAlpha_(sections.hasAlpha),
      backdrop_(backdrop) {
    if (sections.header.channels < channels()) throw BEReader::Short();
    PixelLayout layout;
    layout.model = modelOf(sections);
    layout.sample = depth_ == 32 ? SampleType::f32 : depth_ == 16 ? SampleType::u16 : SampleType::u8;
    layout.isInverted = layout.model == ColorModel::cmyk;
    if (sections.header.mode == PSDColorMode::bitmap) {
        palette_[0] = {255, 255, 255, 255};
        palette_[1] = {0, 0, 0, 255};
    } else if (sections.header.mode == PSDColorMode::indexed) {
        const auto table = BEReader(sections.colorTable).slice(kPaletteColors * 3);
        std::array<uint8_t, kPaletteColors * 3> colors{};
        for (std::size_t i = 0; i < colors.size(); ++i) colors[i] = table[i % 3 * kPaletteColors + i / 3];
        profileFor(sections, layout).convert(colors.data(), palette_[0].data(), kPaletteColors);
        if (const auto none = sections.resources.transparentIndex; none && *none < kPaletteColors)
            palette_[checkedSize(*none)] = {};
    } else {
        layout.hasAlpha = hasAlpha_;
        profile_ = profileFor(sections, layout);
    }
}

bool MergedPixels::convert(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const {
    if (!profile_) {
        convertIndices(samples, pixels);
        return true;
    }
    switch (depth_) {
    case 16:
        return convertColors<uint16_t>(samples, pixels);
    case 32:
        return convertColors<float>(samples, pixels);
    default:
        return convertColors<uint8_t>(samples, pixels);
    }
}

template <class Sample>
bool MergedPixels::convertColors(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const {
    const std::size_t count = pixels.size() / 4;
    const auto perPixel = checkedSize(profile_->layout().colorChannels() + (hasAlpha_ ? 1 : 0));
    const auto owned = std::make_unique_for_overwrite<Sample[]>(count * perPixel);
    const std::span<Sample> colors(owned.get(), count * perPixel);
    placeSideBySide(samples, colors);
    const bool fits = !hasAlpha_ || backdrop_ == Backdrop::none || takeOffWhite(colors);
    profile_->convert(colors.data(), pixels.data(), static_cast<int64_t>(count));
    if (hasAlpha_) premultiply(pixels);
    return fits;
}

template <class Sample>
void MergedPixels::placeSideBySide(std::span<const uint8_t> samples, std::span<Sample> colors) const {
    const std::size_t rowBytes = samples.size() / checkedSize(channels());
    const std::size_t count = rowBytes / sizeof(Sample);
    const std::size_t perPixel = colors.size() / count;
    const auto wanted = checkedSize(profile_->layout().colorChannels());
    for (std::size_t c = 0; c < perPixel; ++c) {
        const bool isAlpha = c == wanted;
        const std::size_t channel = isAlpha ? checkedSize(colors_) : c;
        if (!isAlpha && channel >= checkedSize(colors_)) { // three inks and no black
            for (std::size_t x = 0; x < count; ++x)
                colors[x * perPixel + c] = static_cast<Sample>(kFull<Sample>);
            continue;
        }
        const uint8_t* row = samples.data() + channel * rowBytes;
        for (std::size_t x = 0; x < count; ++x)
            colors[x * perPixel + c] = sampleAt(row + x * sizeof(Sample), Sample());
        if constexpr (std::is_same_v<Sample, uint16_t>) {
            if (profile_->layout().model != ColorModel::lab || isAlpha || c == 0) continue;
            for (std::size_t x = 0; x < count; ++x)
                colors[x * perPixel + c] = inProfileCoding(colors[x * perPixel + c]);
        }
    }
}

/// color = white + (stored - white) / alpha, in the file's own numbers, before any profile.
template <class Sample> bool MergedPixels::takeOffWhite(std::span<Sample> colors) const {
    const bool isLab = profile_->layout().model == ColorModel::lab;
    const auto perColor = checkedSize(profile_->layout().colorChannels());
    bool fits = true;
    for (std::size_t at = 0; at < colors.size(); at += perColor + 1) {
        const double alpha = std::min(colors[at + perColor] / kFull<Sample>, 1.0);
        if (alpha == 0 || alpha == 1) continue;
        for (std::size_t c = 0; c < perColor; ++c) {
            const bool isHue = isLab && c > 0;
            const double white = isHue ? kNeutral<Sample> : kFull<Sample>;
            const double offWhite = colors[at + c] - white;
            if (!isHue && offWhite + white * alpha < -kSlack<Sample>) fits = false;
            colors[at + c] = toSample(std::clamp(white + offWhite / alpha, 0.0, kFull<Sample>), Sample());
        }
    }
    return fits;
}

void MergedPixels::convertIndices(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const {
    const std::size_t count = pixels.size() / 4;
    for (std::size_t x = 0; x < count; ++x) {
        const std::size_t index = depth_ == 1 ? samples[x / 8] >> (7 - x % 8) & 1 : samples[x];
        std::copy_n(palette_[index].data(), 4, &pixels[x * 4]);
        if (hasAlpha_ && pixels[x * 4 + 3] != 0) pixels[x * 4 + 3] = samples[count + x];
    }
    if (hasAlpha_) premultiply(pixels);
}

} // namespace qirn

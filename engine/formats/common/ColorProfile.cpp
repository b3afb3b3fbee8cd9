#include "formats/common/ColorProfile.h"

#include "formats/common/SrgbBytes.h"
#include "formats/common/WideColorTables.h"
#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include <lcms2.h>
#include <lcms2_plugin.h>

namespace qirn {

namespace {

constexpr std::size_t kLargestProfile = 16u << 20; // bytes; large printer profiles have 3 MB
constexpr uint32_t kLargestAllocation = 64u << 20; // bytes that the color library may take at once

// y = (a x + b)^g from d on, c x below it: g, a, b, c, d.
constexpr std::array<double, 5> kSrgbCurve{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};

// The color library's allocations, limited, so that a profile that claims huge tables is refused.
void* allocate(cmsContext, cmsUInt32Number bytes) {
    return bytes > kLargestAllocation ? nullptr : std::malloc(bytes);
}
void release(cmsContext, void* memory) {
    std::free(memory);
}
void* reallocate(cmsContext, void* memory, cmsUInt32Number bytes) {
    return bytes > kLargestAllocation ? nullptr : std::realloc(memory, bytes);
}

struct ContextDeleter {
    void operator()(void* context) const { cmsDeleteContext(static_cast<cmsContext>(context)); }
};
struct ProfileDeleter {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Context = std::shared_ptr<void>;
using Profile = std::unique_ptr<void, ProfileDeleter>;

Context makeContext() {
    cmsPluginMemHandler memory{};
    memory.base = {cmsPluginMagicNumber, 2060, cmsPluginMemHandlerSig, nullptr};
    memory.MallocPtr = allocate;
    memory.FreePtr = release;
    memory.ReallocPtr = reallocate;
    return {cmsCreateContext(&memory, nullptr), ContextDeleter()};
}

cmsUInt32Number sampleBytes(SampleType sample) {
    return sample == SampleType::u8 ? 1 : sample == SampleType::u16 ? 2 : 4;
}

cmsColorSpaceSignature signatureOf(ColorModel model) {
    switch (model) {
    case ColorModel::gray:
        return cmsSigGrayData;
    case ColorModel::cmyk:
        return cmsSigCmykData;
    case ColorModel::lab:
        return cmsSigLabData;
    case ColorModel::rgb:
        break;
    }
    return cmsSigRgbData;
}

cmsUInt32Number formatOf(const PixelLayout& layout) {
    return COLORSPACE_SH(static_cast<uint32_t>(_cmsLCMScolorSpace(signatureOf(layout.model)))) |
           CHANNELS_SH(static_cast<uint32_t>(layout.colorChannels())) | EXTRA_SH(layout.hasAlpha ? 1u : 0u) |
           BYTES_SH(sampleBytes(layout.sample)) | FLOAT_SH(layout.sample == SampleType::f32 ? 1u : 0u) |
           FLAVOR_SH(layout.isInverted ? 1u : 0u);
}

/// The transform keeps its context alive; null when the library cannot make one.
std::shared_ptr<void> transformBetween(const Context& context, const Profile& source, cmsUInt32Number from,
                                       const Profile& target, cmsUInt32Number to, cmsUInt32Number flags) {
    if (!source || !target) return nullptr;
    const cmsHTRANSFORM transform =
        cmsCreateTransformTHR(static_cast<cmsContext>(context.get()), source.get(), from, target.get(), to,
                              INTENT_RELATIVE_COLORIMETRIC, flags | cmsFLAGS_BLACKPOINTCOMPENSATION);
    if (!transform) return nullptr;
    return {transform, [context](void* handle) { cmsDeleteTransform(handle); }};
}

std::shared_ptr<void> transformFrom(const Context& context, const Profile& source,
                                    const PixelLayout& layout) {
    const Profile target(cmsCreate_sRGBProfileTHR(static_cast<cmsContext>(context.get())));
    // Precomputed tables are off by a step or two where they interpolate; they are used for 8-bit pixels only.
    const bool isByte = layout.sample == SampleType::u8 && layout.model != ColorModel::lab;
    const cmsUInt32Number care = isByte ? cmsFLAGS_HIGHRESPRECALC : cmsFLAGS_NOOPTIMIZE;
    return transformBetween(context, source, formatOf(layout), target, TYPE_RGBA_8,
                            care | (layout.hasAlpha ? cmsFLAGS_COPY_ALPHA : 0u));
}

WideColorTables::Transform workOf(const std::shared_ptr<void>& transform) {
    return [transform](const void* from, void* to, int64_t count) {
        cmsDoTransform(transform.get(), from, to, static_cast<cmsUInt32Number>(count));
    };
}

Profile rgbProfileOf(cmsContext library, const ColorProfile::Chromaticities& places, cmsToneCurve* curve) {
    const cmsCIExyY white{places.whiteX, places.whiteY, 1};
    const cmsCIExyYTRIPLE primaries{
        {places.redX, places.redY, 1}, {places.greenX, places.greenY, 1}, {places.blueX, places.blueY, 1}};
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    return Profile(cmsCreateRGBProfileTHR(library, &white, &primaries, curves));
}

/// Tables for 16-bit gray and RGB; null for other layouts and where they would not be exact.
std::shared_ptr<const WideColorTables> tablesFrom(const Context& context, const Profile& source,
                                                  const PixelLayout& layout) {
    if (layout.sample != SampleType::u16) return nullptr;
    if (layout.model != ColorModel::gray && layout.model != ColorModel::rgb) return nullptr;
    const auto exact = transformFrom(context, source, {layout.model, SampleType::u16});
    if (!exact) return nullptr;
    if (layout.model == ColorModel::gray) return WideColorTables::ofGray(workOf(exact));

    const auto library = static_cast<cmsContext>(context.get());
    cmsToneCurve* const straight = cmsBuildGamma(library, 1);
    if (!straight) return nullptr;
    const Profile light = rgbProfileOf(library, ColorProfile::srgbChromaticities, straight);
    cmsFreeToneCurve(straight);
    const auto linear =
        transformBetween(context, source, TYPE_RGB_FLT, light, TYPE_RGB_FLT, cmsFLAGS_NOOPTIMIZE);
    return linear ? WideColorTables::ofRgb(workOf(exact), workOf(linear)) : nullptr;
}

/// Whether a transform leaves 8-bit colors unchanged, except for rounding.
bool changesNothing(void* transform, int channels) {
    std::vector<uint8_t> colors;
    for (int v = 0; v < 256; ++v) colors.insert(colors.end(), checkedSize(channels), static_cast<uint8_t>(v));
    constexpr int kStep = 17;
    for (int i = 0; channels == 3 && i < 16 * 16 * 16; ++i) {
        for (const int part : {i % 16, i / 16 % 16, i / 256})
            colors.push_back(static_cast<uint8_t>(part * kStep));
    }
    const std::size_t count = colors.size() / checkedSize(channels);
    std::vector<uint8_t> rgba(count * 4);
    cmsDoTransform(transform, colors.data(), rgba.data(), static_cast<cmsUInt32Number>(count));
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            const int in = channels == 3 ? colors[i * 3 + c] : colors[i];
            if (std::abs(in - rgba[i * 4 + c]) > 1) return false;
        }
    }
    return true;
}

bool isPictureProfile(const Profile& profile, ColorModel model) {
    if (cmsGetColorSpace(profile.get()) != signatureOf(model)) return false;
    switch (cmsGetDeviceClass(profile.get())) {
    case cmsSigInputClass:
    case cmsSigDisplayClass:
    case cmsSigOutputClass:
    case cmsSigColorSpaceClass:
        return true;
    default:
        return false;
    }
}

uint8_t byteOf(uint8_t value) {
    return value;
}
uint8_t byteOf(uint16_t value) {
    return static_cast<uint8_t>((value + 128) / 257);
}

uint8_t byteOf(float light) {
    return srgbByte(light);
}

uint8_t alphaByte(uint8_t value) {
    return value;
}
uint8_t alphaByte(uint16_t value) {
    return byteOf(value);
}
uint8_t alphaByte(float value) {
    return static_cast<uint8_t>(std::min(std::max(0.0f, value), 1.0f) * 255 + 0.5f);
}

/// Light that ideal ink and ideal black transmit; both from 0 (full ink) to `white`.
uint8_t throughInks(uint64_t ink, uint64_t black, uint64_t white) {
    return static_cast<uint8_t>((ink * black * 255 + white * white / 2) / (white * white));
}

template <class T> void convertPlainly(const PixelLayout& layout, const T* in, uint8_t* rgba, int64_t count) {
    const int channels = layout.colorChannels();
    for (int64_t i = 0; i < count; ++i, rgba += 4) {
        if (layout.model == ColorModel::cmyk) {
            constexpr uint64_t white = sizeof(T) == 1 ? 255 : 65535;
            std::array<uint64_t, 4> paper{}; // what is left without the ink
            for (std::size_t c = 0; c < 4; ++c) {
                const auto value = static_cast<uint64_t>(in[c]);
                paper[c] = layout.isInverted ? value : white - value;
            }
            for (std::size_t c = 0; c < 3; ++c) rgba[c] = throughInks(paper[c], paper[3], white);
        } else {
            for (int c = 0; c < 3; ++c) rgba[c] = byteOf(in[channels == 1 ? 0 : c]);
        }
        in += channels;
        rgba[3] = layout.hasAlpha ? alphaByte(*in++) : 255;
    }
}

} // namespace

int PixelLayout::colorChannels() const {
    return model == ColorModel::gray ? 1 : model == ColorModel::cmyk ? 4 : 3;
}

int PixelLayout::pixelBytes() const {
    return (colorChannels() + (hasAlpha ? 1 : 0)) * static_cast<int>(sampleBytes(sample));
}

std::optional<ColorProfile> ColorProfile::embedded(std::span<const uint8_t> icc, const PixelLayout& layout) {
    if (icc.empty() || icc.size() > kLargestProfile) return std::nullopt;
    const Context context = makeContext();
    if (!context) return std::nullopt;
    const Profile profile(cmsOpenProfileFromMemTHR(static_cast<cmsContext>(context.get()), icc.data(),
                                                   static_cast<cmsUInt32Number>(icc.size())));
    if (!profile || !isPictureProfile(profile, layout.model)) return std::nullopt;
    ColorProfile result(layout);
    if (layout.model == ColorModel::rgb || layout.model == ColorModel::gray) {
        const PixelLayout bytes{layout.model, SampleType::u8, false, false};
        const auto transform = transformFrom(context, profile, bytes);
        if (!transform) return std::nullopt;
        // Samples of 32 bits are linear light, which such a profile does not describe.
        if (layout.sample != SampleType::f32 && changesNothing(transform.get(), bytes.colorChannels()))
            return result;
    }
    result.transform_ = transformFrom(context, profile, layout);
    if (!result.transform_) return std::nullopt;
    result.tables_ = tablesFrom(context, profile, layout);
    return result;
}

ColorProfile ColorProfile::standard(const PixelLayout& layout) {
    require(layout.sample != SampleType::f32 || layout.model == ColorModel::gray ||
            layout.model == ColorModel::rgb);
    ColorProfile result(layout);
    if (layout.model == ColorModel::lab) {
        const Context context = makeContext();
        const Profile profile(cmsCreateLab4ProfileTHR(static_cast<cmsContext>(context.get()), nullptr));
        result.transform_ = transformFrom(context, profile, layout);
        require(result.transform_ != nullptr);
    }
    return result;
}

std::optional<ColorProfile> ColorProfile::calibrated(const Chromaticities& places,
                                                     std::optional<double> power, const PixelLayout& layout) {
    const bool isGray = layout.model == ColorModel::gray;
    if (!isGray && layout.model != ColorModel::rgb) return std::nullopt;
    if (power && !(*power > 0.1 && *power < 10)) return std::nullopt;
    const Context context = makeContext();
    if (!context) return std::nullopt;
    const auto library = static_cast<cmsContext>(context.get());
    cmsToneCurve* const curve =
        power ? cmsBuildGamma(library, *power) : cmsBuildParametricToneCurve(library, 4, kSrgbCurve.data());
    if (!curve) return std::nullopt;
    const Profile profile = isGray ? Profile(cmsCreateGrayProfileTHR(library, cmsD50_xyY(), curve))
                                   : rgbProfileOf(library, places, curve);
    cmsFreeToneCurve(curve);
    if (!profile) return std::nullopt;
    ColorProfile result(layout);
    result.transform_ = transformFrom(context, profile, layout);
    if (!result.transform_) return std::nullopt;
    result.tables_ = tablesFrom(context, profile, layout);
    return result;
}

void ColorProfile::convert(const void* pixels, uint8_t* rgba, int64_t count) const {
    if (tables_) return tables_->convert(static_cast<const uint16_t*>(pixels), layout_.hasAlpha, rgba, count);
    if (transform_) {
        cmsDoTransform(transform_.get(), pixels, rgba, static_cast<cmsUInt32Number>(count));
        for (int64_t i = 0; !layout_.hasAlpha && i < count; ++i) rgba[i * 4 + 3] = 255;
        return;
    }
    switch (layout_.sample) {
    case SampleType::u8:
        return convertPlainly(layout_, static_cast<const uint8_t*>(pixels), rgba, count);
    case SampleType::u16:
        return convertPlainly(layout_, static_cast<const uint16_t*>(pixels), rgba, count);
    case SampleType::f32:
        return convertPlainly(layout_, static_cast<const float*>(pixels), rgba, count);
    }
}

} // namespace qirn

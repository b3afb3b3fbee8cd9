#include "formats/pictures/tiff/TiffSamples.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>

#include <tiffio.h>

namespace qirn {

namespace {

template <class T> T largest() {
    if constexpr (sizeof(T) == 4)
        return 1;
    else
        return static_cast<T>(-1);
}

template <class T> T straight(T premultiplied, T alpha) {
    if (!(alpha > 0)) return 0;
    if constexpr (sizeof(T) == 4) {
        return premultiplied / alpha;
    } else {
        const uint64_t value = (uint64_t{premultiplied} * largest<T>() + alpha / 2u) / alpha;
        return static_cast<T>(std::min<uint64_t>(value, largest<T>()));
    }
}

/// Lab as profiles code it. `channel` 0 is L; TIFF's own a and b have signs.
uint8_t profileLab(uint8_t value, uint16_t photometric, int channel) {
    return photometric == PHOTOMETRIC_CIELAB && channel > 0 ? static_cast<uint8_t>(value ^ 0x80) : value;
}
uint16_t profileLab(uint16_t value, uint16_t photometric, int channel) {
    if (photometric == PHOTOMETRIC_CIELAB) {
        if (channel == 0) return value;
        value ^= 0x8000;
    }
    // 256 steps for one of a or b, of which profiles make 257; L of 65,280 is 100.
    return static_cast<uint16_t>(std::min(value * 257u / 256u, 65535u));
}
float profileLab(float value, uint16_t, int) {
    return value;
}

/// Some old files hold maps of 8 bits in numbers of 16.
uint8_t mapByte(uint16_t value, bool isOfBytes) {
    return static_cast<uint8_t>(isOfBytes ? value : (value * 255u + 32767u) / 65535u);
}

} // namespace

TiffSamples::TiffSamples(tiff* file, const TiffShape& shape) : shape_(shape) {
    if (!shape.isIndexed) return;
    const std::size_t count = std::size_t{1} << shape.bits;
    std::array<std::array<uint8_t, 3>, 256> colors{}; // a gray is the first channel
    if (shape.photometric == PHOTOMETRIC_PALETTE) {
        uint16_t* maps[3] = {};
        if (TIFFGetField(file, TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) != 1) return;
        const bool isOfBytes = std::all_of(std::begin(maps), std::end(maps), [&](const uint16_t* map) {
            return std::all_of(map, map + count, [](uint16_t value) { return value < 256; });
        });
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < 3; ++c) colors[i][c] = mapByte(maps[c][i], isOfBytes);
        }
    } else {
        const bool isWhiteFirst = shape.photometric == PHOTOMETRIC_MINISWHITE;
        for (std::size_t i = 0; i < count; ++i)
            colors[i][0] = static_cast<uint8_t>((isWhiteFirst ? count - 1 - i : i) * 255 / (count - 1));
    }
    const auto channels = checkedSize(shape.layout.colorChannels());
    for (std::size_t byte = 0; byte < 256; ++byte) {
        auto out = colorsOfByte_[byte].begin();
        for (int shift = 8 - shape.bits; shift >= 0; shift -= shape.bits)
            out = std::copy_n(colors[byte >> shift & (count - 1)].begin(), channels, out);
    }
}

void TiffSamples::putRow(std::span<const uint8_t* const> planes, void* row) const {
    if (shape_.isIndexed) return putColors(planes[0], static_cast<uint8_t*>(row));
    switch (shape_.layout.sample) {
    case SampleType::u8:
        return putSamples(planes, static_cast<uint8_t*>(row));
    case SampleType::u16:
        return putSamples(planes, static_cast<uint16_t*>(row));
    case SampleType::f32:
        return putSamples(planes, static_cast<float*>(row));
    }
}

template <class T> void TiffSamples::putSamples(std::span<const uint8_t* const> planes, T* out) const {
    const int colors = shape_.layout.colorChannels();
    std::array<const T*, 5> channels{};
    for (int c = 0; c < colors + (shape_.layout.hasAlpha ? 1 : 0); ++c) {
        const int sample = c < colors ? c : shape_.alphaSample;
        const auto plane = checkedSize(shape_.isPlanar ? c : 0);
        // Rows begin where any sample may lie.
        channels[checkedSize(c)] = reinterpret_cast<const T*>(planes[plane]) + (shape_.isPlanar ? 0 : sample);
    }
    const int step = shape_.isPlanar ? 1 : shape_.samples;
    for (int64_t x = 0; x < shape_.width; ++x) {
        const auto at = checkedSize(x * step);
        const T alpha = shape_.layout.hasAlpha ? channels[checkedSize(colors)][at] : largest<T>();
        for (int c = 0; c < colors; ++c) {
            T value = channels[checkedSize(c)][at];
            if (shape_.alpha == TiffShape::Alpha::premultiplied) value = straight(value, alpha);
            if (shape_.photometric == PHOTOMETRIC_MINISWHITE) value = static_cast<T>(largest<T>() - value);
            if (shape_.layout.model == ColorModel::lab) value = profileLab(value, shape_.photometric, c);
            *out++ = value;
        }
        if (shape_.layout.hasAlpha) *out++ = alpha;
    }
}

void TiffSamples::putColors(const uint8_t* indices, uint8_t* out) const {
    const auto channels = checkedSize(shape_.layout.colorChannels());
    const std::size_t ofByte = channels * 8 / checkedSize(shape_.bits);
    const auto rowBytes = channels * checkedSize(shape_.width);
    for (std::size_t at = 0; at < rowBytes; at += ofByte)
        std::memcpy(out + at, colorsOfByte_[*indices++].data(), std::min(ofByte, rowBytes - at));
}

} // namespace qirn

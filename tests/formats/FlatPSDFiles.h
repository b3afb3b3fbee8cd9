#pragma once
// Photoshop files without layers that a test makes itself, in every mode, depth and packing.
#include "core/SeededRandom.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PackBits.h"
#include "platform/Bytes.h"
#include "support/PSDFiles.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include <QByteArray>

namespace qirn::test {

enum Mode : uint16_t { bitmap, gray, indexed, rgb, cmyk, multichannel = 7, duotone, lab };
enum Packing : uint16_t { raw, runs, deflated, differences };

using Samples = std::vector<uint32_t>; // one a channel, as the file has them; floats by their bits

/// A Photoshop file of one's own making: `sampleAt(x, y)` gives the channels of a pixel.
struct File {
    Mode mode = rgb;
    uint16_t depth = 8;
    Packing packing = raw;
    bool isLarge = false;
    uint16_t channels = 3;
    uint32_t width = 1;
    uint32_t height = 1;
    std::function<Samples(uint32_t, uint32_t)> sampleAt;
    QByteArray colorTable;
    QByteArray resources;
    QByteArray layers; ///< The section without its length.

    QByteArray bytes() const {
        const PSDParts parts{.width = width,
                             .height = height,
                             .version = static_cast<uint16_t>(isLarge ? 2 : 1),
                             .channels = channels,
                             .depth = depth,
                             .mode = mode,
                             .modeData = colorTable,
                             .resources = resources,
                             .behindLayers = layers,
                             .picture = big16(packing) + picture()};
        return parts.joined();
    }

    QByteArray row(uint16_t channel, uint32_t y) const {
        BEWriter out;
        uint32_t bits = 0;
        uint32_t previous = 0;
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t sample = sampleAt(x, y)[channel];
            const uint32_t stored = packing == differences ? sample - previous : sample;
            previous = sample;
            if (depth == 8) out.u8(static_cast<uint8_t>(stored));
            if (depth == 16) out.u16(static_cast<uint16_t>(stored));
            if (depth == 32) out.u32(sample);
            bits |= sample << (7 - x % 8);
            if (depth == 1 && (x % 8 == 7 || x + 1 == width)) {
                out.u8(static_cast<uint8_t>(bits));
                bits = 0;
            }
        }
        if (depth != 32 || packing != differences) return out.take();
        QByteArray split;
        for (int byte = 0; byte < 4; ++byte)
            for (qsizetype at = byte; at < out.size(); at += 4) split.append(out.data()[at]);
        for (qsizetype at = split.size() - 1; at > 0; --at)
            split[at] = static_cast<char>(split[at] - split[at - 1]);
        return split;
    }

    QByteArray picture() const {
        BEWriter lengths;
        QByteArray rows;
        for (uint16_t c = 0; c < channels; ++c) {
            for (uint32_t y = 0; y < height; ++y) {
                const QByteArray plain = row(c, y);
                if (packing != runs) {
                    rows += plain;
                    continue;
                }
                std::vector<uint8_t> packed(PSDFile::packedRoom(static_cast<std::size_t>(plain.size())));
                packed.resize(static_cast<std::size_t>(PSDFile::packBits(bytesOf(plain), packed.data()) -
                                                       packed.data()));
                if (isLarge) lengths.u16(0);
                lengths.u16(static_cast<uint16_t>(packed.size()));
                rows.append(reinterpret_cast<const char*>(packed.data()), std::ssize(packed));
            }
        }
        if (packing == deflated || packing == differences)
            return qCompress(rows).mid(4); // its own length first
        return lengths.data() + rows;
    }
};

/// A layer section of which only the number of layers matters: in its ordinary place or in a block of its own.
inline QByteArray layerCount(int16_t count, const char* block = nullptr, bool isLarge = false) {
    const auto length = [isLarge](uint32_t value) {
        return (isLarge ? big32(0) : QByteArray()) + big32(value);
    };
    const QByteArray bytes = big16(static_cast<uint16_t>(count)), noMask = big32(0);
    if (!block) return length(2) + bytes + noMask;
    // First a block of 5 bytes and what fills them up to 8.
    return length(0) + noMask + "8BIMPatt" + big32(5) + QByteArray(8, '\0') + "8BIM" + block + length(2) +
           bytes + big16(0);
}

inline uint32_t bitsOf(double value) {
    return std::bit_cast<uint32_t>(static_cast<float>(value));
}

inline int encoded(double light) {
    light = std::clamp(light, 0.0, 1.0);
    return static_cast<int>(
        std::lround(255 * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055)));
}

inline std::array<int, 3> sRGBOfLab(double L, double a, double b) {
    const auto inverse = [](double t) { return t > 6.0 / 29 ? t * t * t : 3 * 36.0 / 841 * (t - 4.0 / 29); };
    const double y = (L + 16) / 116;
    const double X = 0.96422 * inverse(y + a / 500);
    const double Y = inverse(y);
    const double Z = 0.82521 * inverse(y - b / 200);
    return {encoded(3.1338561 * X - 1.6168667 * Y - 0.4906146 * Z),
            encoded(-0.9787684 * X + 1.9161415 * Y + 0.0334540 * Z),
            encoded(0.0719453 * X - 0.2289914 * Y + 1.4052427 * Z)};
}

/// The straight color that a file without a profile means, by the definitions of its numbers.
inline std::array<int, 3> meaning(Mode mode, int depth, const Samples& s) {
    const double full = depth == 32 ? 1 : std::exp2(depth) - 1;
    const auto part = [&](std::size_t c) {
        return depth == 32 ? static_cast<double>(std::bit_cast<float>(s[c])) : s[c] / full;
    };
    const auto byte = [&](double value) {
        return depth == 32 ? encoded(value) : static_cast<int>(std::lround(value * 255));
    };
    switch (mode) {
    case bitmap:
        return s[0] ? std::array{0, 0, 0} : std::array{255, 255, 255};
    case gray:
    case duotone:
        return {byte(part(0)), byte(part(0)), byte(part(0))};
    case indexed: // the table made below
        return {static_cast<int>(s[0]), static_cast<int>(255 - s[0]), static_cast<int>(s[0] ^ 0x55)};
    case rgb:
        return {byte(part(0)), byte(part(1)), byte(part(2))};
    case cmyk:
    case multichannel:
        return {byte(part(0) * part(3)), byte(part(1) * part(3)), byte(part(2) * part(3))};
    case lab: {
        const double step = depth == 16 ? 256 : 1;
        return sRGBOfLab(part(0) * 100, s[1] / step - 128, s[2] / step - 128);
    }
    }
    return {};
}

inline QByteArray colorTable() {
    QByteArray table;
    for (int channel = 0; channel < 3; ++channel)
        for (int i = 0; i < 256; ++i)
            table.append(static_cast<char>(channel == 0 ? i : channel == 1 ? 255 - i : i ^ 0x55));
    return table;
}

/// Noise with runs in it; Lab stays within what sRGB has.
inline std::function<Samples(uint32_t, uint32_t)> noiseOf(Mode mode, int depth) {
    return [=](uint32_t x, uint32_t y) {
        SeededRandom random(y * 1000 + x / (1 + y % 5));
        Samples samples;
        for (int c = 0; c < 5; ++c) {
            double value = random.unit();
            if (mode == lab) value = c == 0 ? 0.4 + value * 0.3 : 0.45 + value * 0.1;
            if (depth == 32)
                samples.push_back(bitsOf(value * 1.2 - 0.1));
            else
                samples.push_back(static_cast<uint32_t>(value * std::exp2(depth)));
        }
        return samples;
    };
}

/// One pixel.
inline File pixelFile(Mode mode, uint16_t depth, Samples samples, QByteArray layers = {},
                      QByteArray resources = {}) {
    File file;
    file.mode = mode;
    file.depth = depth;
    file.channels = static_cast<uint16_t>(samples.size());
    file.sampleAt = [samples = std::move(samples)](uint32_t, uint32_t) { return samples; };
    if (mode == indexed) file.colorTable = colorTable();
    file.layers = std::move(layers);
    file.resources = std::move(resources);
    return file;
}

} // namespace qirn::test

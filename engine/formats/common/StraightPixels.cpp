#include "formats/common/StraightPixels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

// Compiled once for each instruction set; the best one is chosen when the program runs.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "formats/common/StraightPixels.cpp"
#include <hwy/foreach_target.h>

#include "platform/lanes/Lanes.h"

#ifndef QIRN_FORMATS_STRAIGHT_PIXELS_RUN
#define QIRN_FORMATS_STRAIGHT_PIXELS_RUN
namespace qirn {

inline constexpr int kRun =
    64; // pixels at a time: a multiple of every vector, and small enough for the L1 cache

} // namespace qirn
#endif

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {
namespace {

/// Integer division n / a as (n + 0.5) * (1 / a) in floats: the error is at most 0.0001, and (n + 0.5) / a is at
/// least 0.5 / 255 away from the next whole number, so truncation gives the exact quotient.
template <int kShift> HWY_INLINE Words straightByte(Words pixel, Floats rounding, Floats scale) {
    return truncated(smaller((byteOf<kShift>(pixel) * Floats(255) + rounding) * scale, Floats(255)));
}

/// `kRun` premultiplied pixels as straight ones.
HWY_ATTR void StraightRun(const uint8_t* pixels, uint8_t* straight) {
    for (int at = 0; at < 4 * kRun; at += 4 * kLanes) {
        const Words pixel = loadWords(pixels + at);
        const Floats alpha = byteOf<24>(pixel);
        const Floats scale = select(alpha > Floats(0), Floats(1) / alpha, Floats(0));
        const Floats rounding =
            numberOf(shiftedDown<25>(pixel)) + Floats(0.5f); // half of alpha, as a whole number
        storeWords(straightByte<0>(pixel, rounding, scale) |
                       shiftedUp<8>(straightByte<8>(pixel, rounding, scale)) |
                       shiftedUp<16>(straightByte<16>(pixel, rounding, scale)) |
                       shiftedUp<24>(shiftedDown<24>(pixel)),
                   straight + at);
    }
}

} // namespace
} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(StraightRun);

namespace {

/// A run of pixels channel by channel. Rows shorter than a run leave the rest as it is, so that loops have a fixed
/// length and a compiler does several pixels at once.
struct Run {
    uint8_t channel[4][kRun];

    void split(const uint8_t* pixels) {
        for (int i = 0; i < kRun; ++i) {
            for (int c = 0; c < 4; ++c) channel[c][i] = pixels[4 * i + c];
        }
    }
    void store(uint8_t* pixels, int64_t count) const {
        if (count == kRun) return join(pixels);
        uint8_t whole[4 * kRun];
        join(whole);
        std::memcpy(pixels, whole, static_cast<std::size_t>(4 * count));
    }
    void join(uint8_t* pixels) const {
        for (int i = 0; i < kRun; ++i) {
            for (int c = 0; c < 4; ++c) pixels[4 * i + c] = channel[c][i];
        }
    }

    void multiplyByAlpha() {
        for (int c = 0; c < 3; ++c) {
            for (int i = 0; i < kRun; ++i) {
                // x / 255 in whole numbers for every x below 65,535; nothing here exceeds 16 bits.
                const auto x = static_cast<uint16_t>(channel[3][i] * channel[c][i] + 127);
                channel[c][i] = static_cast<uint8_t>(static_cast<uint16_t>(x + 1 + (x >> 8)) >> 8);
            }
        }
    }
};

uint8_t alphaOf(uint32_t word) {
    return std::bit_cast<std::array<uint8_t, 4>>(word)[3];
}

/// The first `count` of a run's pixels to where the rows begin at `at`.
void straightRun(const uint8_t* pixels, std::size_t count, const PlaneRows& rows, int64_t at) {
    uint32_t words[kRun];
    std::memcpy(words, pixels, sizeof words);
    uint32_t all = ~uint32_t{0}, any = 0;
    for (const uint32_t word : words) {
        all &= word;
        any |= word;
    }
    if (alphaOf(any) == 0) {
        for (uint8_t* row : rows) std::memset(row + at, 0, count);
        return;
    }
    uint8_t straightened[4 * kRun];
    if (alphaOf(all) != 255) {
        HWY_DYNAMIC_DISPATCH(StraightRun)(pixels, straightened);
        pixels = straightened;
    }
    Run run;
    run.split(pixels);
    for (std::size_t c = 0; c < 4; ++c) std::memcpy(rows[c] + at, run.channel[c], count);
}

} // namespace

void straightRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    int64_t at = 0;
    for (; at + kRun <= count; at += kRun) straightRun(pixels + 4 * at, kRun, rows, at);
    if (at == count) return;
    const auto rest = static_cast<std::size_t>(count - at);
    uint8_t whole[4 * kRun] = {};
    std::memcpy(whole, pixels + 4 * at, 4 * rest);
    // The padding repeats a pixel, so that it does not change what the pixels of the run have in common.
    for (std::size_t i = rest; i < kRun; ++i) std::memcpy(whole + 4 * i, whole, 4);
    straightRun(whole, rest, rows, at);
}

void premultiplyRow(const ConstPlaneRows& rows, int64_t count, uint8_t* pixels) {
    for (int64_t at = 0; at < count; at += kRun) {
        const int64_t length = std::min<int64_t>(kRun, count - at);
        Run run{};
        for (std::size_t c = 0; c < 4; ++c)
            std::memcpy(run.channel[c], rows[c] + at, static_cast<std::size_t>(length));
        run.multiplyByAlpha();
        run.store(pixels + 4 * at, length);
    }
}

} // namespace qirn
#endif

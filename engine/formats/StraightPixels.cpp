#include "formats/StraightPixels.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int kRun =
    64; // pixels at a time: short enough for the processor's nearest memory, whole for its vectors

/// A run of pixels channel by channel. Rows shorter than a run leave the rest as it is, so that loops have a fixed
/// length and a compiler does several pixels at once.
struct Run {
    uint8_t channel[4][kRun] = {};

    void load(const uint8_t* pixels, int64_t count) {
        if (count == kRun) return split(pixels);
        uint8_t whole[4 * kRun] = {};
        std::memcpy(whole, pixels, static_cast<std::size_t>(4 * count));
        split(whole);
    }
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

    /// The whole division n / a as (n + 0.5) * (1 / a): the product of floats is at most 0.0001 off and the true
    /// quotient with its half at least 0.5 / 255 from the whole numbers on either side, so that cutting gives the same.
    void divideByAlpha() {
        const uint8_t* alpha = channel[3];
        float scale[kRun];
        for (int i = 0; i < kRun; ++i) scale[i] = alpha[i] == 0 ? 0.0f : 1.0f / static_cast<float>(alpha[i]);
        for (int c = 0; c < 3; ++c) {
            for (int i = 0; i < kRun; ++i) {
                const float value =
                    (static_cast<float>(255 * channel[c][i] + alpha[i] / 2) + 0.5f) * scale[i];
                channel[c][i] = static_cast<uint8_t>(static_cast<int>(value < 255.0f ? value : 255.0f));
            }
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

} // namespace

void straightRow(const uint8_t* pixels, int64_t count, const PlaneRows& rows) {
    uint32_t all = ~uint32_t{0}, any = 0;
    for (int64_t i = 0; i < count; ++i) {
        uint32_t pixel = 0;
        std::memcpy(&pixel, pixels + 4 * i, 4);
        all &= pixel;
        any |= pixel;
    }
    uint8_t alphaOfAll[4], alphaOfAny[4];
    std::memcpy(alphaOfAll, &all, 4);
    std::memcpy(alphaOfAny, &any, 4);
    if (alphaOfAny[3] == 0) {
        for (uint8_t* row : rows) std::memset(row, 0, static_cast<std::size_t>(count));
        return;
    }
    for (int64_t at = 0; at < count; at += kRun) {
        const int64_t length = std::min<int64_t>(kRun, count - at);
        Run run;
        run.load(pixels + 4 * at, length);
        if (alphaOfAll[3] != 255) run.divideByAlpha();
        for (std::size_t c = 0; c < 4; ++c)
            std::memcpy(rows[c] + at, run.channel[c], static_cast<std::size_t>(length));
    }
}

void premultiplyRow(const ConstPlaneRows& rows, int64_t count, uint8_t* pixels) {
    for (int64_t at = 0; at < count; at += kRun) {
        const int64_t length = std::min<int64_t>(kRun, count - at);
        Run run;
        for (std::size_t c = 0; c < 4; ++c)
            std::memcpy(run.channel[c], rows[c] + at, static_cast<std::size_t>(length));
        run.multiplyByAlpha();
        run.store(pixels + 4 * at, length);
    }
}

} // namespace qirn

#include "formats/common/WideColorTables.h"

#include "core/SeededRandom.h"
#include "formats/common/SrgbBytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace qirn {

namespace {

constexpr int64_t kValues = 65536; // of a sample
constexpr int64_t kAtOnce = 4096;
constexpr int kProbes = 4096; // pixels
constexpr int kFewProbes = kProbes / 64;

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>; // rows

std::optional<Matrix> inverseOf(const Matrix& m) {
    const auto minor = [&m](std::size_t row, std::size_t column) {
        const std::size_t r = (row + 1) % 3, s = (row + 2) % 3, c = (column + 1) % 3, d = (column + 2) % 3;
        return m[r][c] * m[s][d] - m[r][d] * m[s][c];
    };
    const double determinant = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    if (!(std::abs(determinant) > 1e-6)) return std::nullopt;
    Matrix inverse;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            inverse[column][row] = minor(row, column) / determinant;
    }
    return inverse;
}

} // namespace

std::shared_ptr<const WideColorTables> WideColorTables::ofGray(const Transform& exact) {
    const auto tables = std::make_shared<WideColorTables>();
    tables->grays_.resize(kValues);
    std::vector<uint16_t> values(kValues);
    for (std::size_t v = 0; v < values.size(); ++v) values[v] = static_cast<uint16_t>(v);
    concurrentPerform(kValues / kAtOnce, [&](int64_t i) {
        exact(&values[checkedSize(i * kAtOnce)], &tables->grays_[checkedSize(i * kAtOnce)], kAtOnce);
    });
    return tables;
}

std::shared_ptr<const WideColorTables> WideColorTables::ofRgb(const Transform& exact,
                                                              const Transform& linear) {
    const float corners[4][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    float lights[4][3] = {};
    linear(corners, lights, 4);
    const auto tables = std::make_shared<WideColorTables>();
    Shaped& shaped = tables->shaped_;
    Matrix matrix;
    for (std::size_t row = 0; row < 3; ++row) {
        shaped.black[row] = lights[0][row];
        for (std::size_t column = 0; column < 3; ++column) {
            matrix[row][column] = double{lights[column + 1][row]} - double{lights[0][row]};
            shaped.matrix[row][column] = static_cast<float>(matrix[row][column]);
        }
    }
    const std::optional<Matrix> inverse = inverseOf(matrix);
    if (!inverse) return nullptr;

    // One ramp of grays gives all three curves: the inverse of the matrix separates the channels.
    for (auto& curve : shaped.curves) curve.resize(kValues);
    concurrentPerform(kValues / kAtOnce, [&](int64_t task) {
        std::vector<std::array<float, 3>> grays(kAtOnce), light(kAtOnce);
        const auto first = checkedSize(task * kAtOnce);
        for (std::size_t i = 0; i < grays.size(); ++i)
            grays[i].fill(static_cast<float>(first + i) / 65535.0f);
        linear(grays.data(), light.data(), kAtOnce);
        for (std::size_t i = 0; i < light.size(); ++i) {
            for (std::size_t c = 0; c < 3; ++c) {
                double value = 0;
                for (std::size_t k = 0; k < 3; ++k)
                    value += (*inverse)[c][k] * (double{light[i][k]} - double{shaped.black[k]});
                shaped.curves[c][first + i] = static_cast<float>(value);
            }
        }
    });
    return tables->agreesWith(exact) ? tables : nullptr;
}

/// Whether all bytes are equal, except for a few that differ by rounding.
bool WideColorTables::agreesWith(const Transform& exact) const {
    SeededRandom random(1);
    std::vector<std::array<uint16_t, 3>> probes(kProbes);
    for (auto& pixel : probes) {
        for (uint16_t& sample : pixel) {
            const uint64_t bits = random.next();
            sample = static_cast<uint16_t>((bits & 0xFFFF) >> (bits >> 16) % 6); // the dark ones more often
        }
    }
    std::vector<std::array<uint8_t, 4>> wanted(kProbes), given(kProbes);
    exact(probes.data(), wanted.data(), kProbes);
    convert(probes.front().data(), false, given.front().data(), kProbes);
    int different = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            const int distance = std::abs(wanted[i][c] - given[i][c]);
            if (distance > 1) return false;
            different += distance;
        }
    }
    return different <= kFewProbes;
}

void WideColorTables::convert(const uint16_t* pixels, bool hasAlpha, uint8_t* rgba, int64_t count) const {
    const auto alphaByte = [hasAlpha](const uint16_t* sample) {
        return hasAlpha ? static_cast<uint8_t>((*sample + 128) / 257) : uint8_t{255};
    };
    if (!grays_.empty()) {
        for (int64_t i = 0; i < count; ++i, pixels += hasAlpha ? 2 : 1, rgba += 4) {
            std::memcpy(rgba, grays_[*pixels].data(), 3);
            rgba[3] = alphaByte(pixels + 1);
        }
        return;
    }
    const auto& [curves, matrix, black] = shaped_;
    for (int64_t i = 0; i < count; ++i, pixels += hasAlpha ? 4 : 3, rgba += 4) {
        const float r = curves[0][pixels[0]], g = curves[1][pixels[1]], b = curves[2][pixels[2]];
        for (std::size_t c = 0; c < 3; ++c)
            rgba[c] = srgbByte(black[c] + matrix[c][0] * r + matrix[c][1] * g + matrix[c][2] * b);
        rgba[3] = alphaByte(pixels + 3);
    }
}

} // namespace qirn

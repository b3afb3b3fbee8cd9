#include "platform/resample/ScaleBlock.h"

#include "platform/CheckedMath.h"
#include "platform/lanes/FloatPixel.h"

#include <algorithm>
#include <vector>

namespace qirn {

namespace {

void widen(const uint8_t* bytes, int64_t count, float* out) {
    for (int64_t i = 0; i < count; ++i) out[i] = static_cast<float>(bytes[i]);
}

/// One source row, given from pixel `left` on, filtered to the block's columns.
void filterRow(const float* source, int64_t left, const ScaleWeights& across, const TargetBlock& block,
               float* out) {
    for (int64_t x = 0; x < block.width; ++x, out += 4) {
        const ScaleWeights::Span span = across.spanOf(block.x + x);
        const float* pixel = source + (span.first - left) * 4;
        FloatPixel sum{};
        for (int64_t i = 0; i < span.count; ++i) sum += span.weights[i] * loadPixel(pixel + i * 4);
        storePixel(out, sum);
    }
}

/// The filtered source rows of which the next target rows are made, as many as the widest filter needs.
class FilteredRows {
public:
    FilteredRows(const SourceRows& rows, const ScaleWeights& across, const TargetBlock& block, int64_t held)
        : rows_(rows),
          across_(across),
          block_(block),
          columns_(across.reachOf(block.x, block.width)),
          scratch_(checkedSize(columns_.count) * 4),
          widened_(scratch_.size()),
          floats_(checkedSize(held * block.width) * 4),
          heldRow_(checkedSize(held), -1),
          hasAlpha_(checkedSize(held)) {}

    /// Null when the whole row is transparent. Valid until another row falls on the same place.
    const float* row(int64_t y) {
        const auto place = checkedSize(y) % heldRow_.size();
        float* floats = floats_.data() + place * checkedSize(block_.width) * 4;
        if (heldRow_[place] != y) {
            heldRow_[place] = y;
            const uint8_t* bytes = rows_(columns_.first, y, columns_.count, scratch_.data());
            hasAlpha_[place] = bytes != nullptr;
            if (bytes) {
                widen(bytes, columns_.count * 4, widened_.data());
                filterRow(widened_.data(), columns_.first, across_, block_, floats);
            }
        }
        return hasAlpha_[place] ? floats : nullptr;
    }

private:
    const SourceRows& rows_;
    const ScaleWeights& across_;
    const TargetBlock& block_;
    const ScaleWeights::Span columns_;
    std::vector<uint8_t> scratch_;
    std::vector<float> widened_;
    std::vector<float> floats_;
    std::vector<int64_t> heldRow_; // -1: none
    std::vector<bool> hasAlpha_;
};

void addRow(float* sums, const float* row, float weight, int64_t floats) {
    for (int64_t i = 0; i < floats; ++i) sums[i] += weight * row[i];
}

/// The same as four calls of `addRow`, added in the same order.
void addFourRows(float* sums, const float* const* rows, const float* weights, int64_t floats) {
    const float *a = rows[0], *b = rows[1], *c = rows[2], *d = rows[3];
    for (int64_t i = 0; i < floats; i += 4) {
        FloatPixel sum = loadPixel(sums + i);
        sum += weights[0] * loadPixel(a + i);
        sum += weights[1] * loadPixel(b + i);
        sum += weights[2] * loadPixel(c + i);
        sum += weights[3] * loadPixel(d + i);
        storePixel(sums + i, sum);
    }
}

} // namespace

void scaleBlock(const SourceRows& rows, const ScaleWeights& across, const ScaleWeights& down,
                const TargetBlock& block) {
    int64_t held = 1;
    for (int64_t y = 0; y < block.height; ++y) held = std::max(held, down.spanOf(block.y + y).count);
    FilteredRows filtered(rows, across, block, held);
    const int64_t floats = block.width * 4;
    std::vector<float> sums(checkedSize(floats));
    for (int64_t y = 0; y < block.height; ++y) {
        std::fill(sums.begin(), sums.end(), 0.0f);
        const ScaleWeights::Span span = down.spanOf(block.y + y);
        const float* group[4];
        float weights[4];
        int grouped = 0;
        for (int64_t i = 0; i < span.count; ++i) {
            const float* row = filtered.row(span.first + i);
            if (!row) continue;
            group[grouped] = row;
            weights[grouped] = span.weights[i];
            if (++grouped < 4) continue;
            addFourRows(sums.data(), group, weights, floats);
            grouped = 0;
        }
        for (int i = 0; i < grouped; ++i) addRow(sums.data(), group[i], weights[i], floats);
        storeFiltered(sums.data(), block.width, block.pixels + y * block.rowBytes);
    }
}

void storeFiltered(float* sums, int64_t count, uint8_t* out) {
    for (int64_t i = 0; i < count; ++i) {
        const float alpha = sums[i * 4 + 3];
        const float top = std::clamp(alpha, 0.0f, 255.0f);
        const float back = 255 / std::max(alpha, 255.0f);
        const FloatPixel least{}, most = least + top;
        FloatPixel pixel = loadPixel(sums + i * 4) * back;
        pixel = pixel > least ? pixel : least;
        pixel = pixel < most ? pixel : most;
        storePixel(sums + i * 4, pixel + 0.5f);
    }
    for (int64_t i = 0; i < count * 4; ++i) out[i] = static_cast<uint8_t>(static_cast<int>(sums[i]));
}

} // namespace qirn

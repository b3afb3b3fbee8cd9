#include "platform/ScaleBlock.h"

#include <cstring>
#include <vector>

namespace qirn {

namespace {

void addWeighted(float* sums, const float* values, float weight, int64_t count) {
    for (int64_t i = 0; i < count; ++i) sums[i] += weight * values[i];
}

/// One source row, given from pixel `left` on, filtered to the block's columns.
void filterRow(const float* source, int64_t left, const ScaleWeights& across, const TargetBlock& block,
               float* out) {
    for (int64_t x = 0; x < block.width; ++x, out += 4) {
        const ScaleWeights::Span span = across.of(block.x + x);
        const float* pixel = source + (span.first - left) * 4;
        float sum[4] = {};
        for (int64_t i = 0; i < span.count; ++i, pixel += 4) {
            for (int c = 0; c < 4; ++c) sum[c] += span.weights[i] * pixel[c];
        }
        std::memcpy(out, sum, sizeof sum);
    }
}

} // namespace

void scaleBlock(const SourceRows& rows, const ScaleWeights& across, const ScaleWeights& down,
                const TargetBlock& block) {
    const ScaleWeights::Span columns = across.reachOf(block.x, block.width);
    const ScaleWeights::Span lines = down.reachOf(block.y, block.height);
    const int64_t rowFloats = block.width * 4;
    std::vector<uint8_t> scratch(static_cast<std::size_t>(columns.count) * 4);
    std::vector<float> source(scratch.size());
    std::vector<float> filtered(static_cast<std::size_t>(rowFloats));
    std::vector<float> sums(static_cast<std::size_t>(rowFloats * block.height));
    // Every source row is filtered once and added to the few target rows that it reaches, from the top on.
    for (int64_t y = lines.first; y < lines.end() && columns.count > 0; ++y) {
        const uint8_t* bytes = rows(columns.first, y, columns.count, scratch.data());
        if (!bytes) continue;
        for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<float>(bytes[i]);
        filterRow(source.data(), columns.first, across, block, filtered.data());
        for (int64_t row = 0; row < block.height; ++row) {
            const ScaleWeights::Span span = down.of(block.y + row);
            if (y < span.first || y >= span.end()) continue;
            addWeighted(sums.data() + row * rowFloats, filtered.data(), span.weights[y - span.first],
                        rowFloats);
        }
    }
    for (int64_t row = 0; row < block.height; ++row) {
        const float* sum = sums.data() + row * rowFloats;
        uint8_t* out = block.pixels + row * block.rowBytes;
        for (int64_t x = 0; x < block.width; ++x) storeFiltered(sum + x * 4, out + x * 4);
    }
}

} // namespace qirn

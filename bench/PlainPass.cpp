#include "PlainPass.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

template <class Visit> void forEachTile(const PaintDocument& doc, Visit visit) {
    for (const LayerRef& layer : doc.layers()) {
        layer->tiles().forEachTile([&](int64_t, const Tile& tile) { visit(tile); });
    }
}

} // namespace

double plainPassSeconds(const PaintDocument& doc) {
    std::vector<uint8_t> scratch(kTileBytes);
    std::vector<double> passes;
    for (int i = 0; i < 5; ++i) {
        const Stopwatch watch;
        forEachTile(doc, [&](const Tile& tile) {
            std::memcpy(scratch.data(), tile.pixels(), kTileBytes);
            benchmark::DoNotOptimize(scratch.data());
            benchmark::ClobberMemory();
        });
        passes.push_back(watch.seconds());
    }
    std::sort(passes.begin(), passes.end());
    return passes[passes.size() / 2];
}

int64_t plainPassBytes(const PaintDocument& doc) {
    int64_t tiles = 0;
    forEachTile(doc, [&](const Tile&) { ++tiles; });
    return tiles * kTileBytes;
}

} // namespace qirn::bench

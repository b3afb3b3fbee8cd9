#include "PaintedPicture.h"
#include "PlainPass.h"
#include "compositing/CompositeInputs.h"

#include <algorithm>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

constexpr int kSteps = 500;

/// Touches a few tiles of one layer, as a stroke does.
void touch(PaintDocument& doc, int number) {
    Layer& layer = doc.layer(1 + number % (doc.layerCount() - 1));
    for (int tile : {0, 1}) {
        layer.writableTile((number * 7 + tile) % doc.grid().count()).writablePixels()[0] ^= 1;
    }
}

/// A commit when the history is full at 500 steps of a picture of ten layers: what it adds and what it drops.
/// Argument 0 changes two tiles between commits, 1 every tile of every layer.
void commitAt500Steps(benchmark::State& state) {
    const auto doc = paintedPicture(9);
    doc->maxUndoSteps = kSteps;
    doc->maxUndoBytes = INT64_MAX;
    int number = 0;
    for (; number < kSteps; ++number) {
        touch(*doc, number);
        doc->commit(QStringLiteral("Brush Stroke"));
    }
    double worst = 0, whole = 0;
    for (auto _ : state) {
        ++number;
        if (state.range(0) == 0) {
            touch(*doc, number);
        } else {
            for (const LayerRef& layer : doc->layers())
                doc->fillLayer(*layer, PaintColor(0.5, 0, 0.001 * (number % 900)));
        }
        const Stopwatch watch;
        doc->commit(QStringLiteral("Brush Stroke"));
        const double seconds = watch.seconds();
        worst = std::max(worst, seconds);
        whole += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["entries"] = static_cast<double>(doc->history().size());
    state.counters["max_ms"] = worst * 1000;
    state.counters["ratio"] = whole / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK(commitAt500Steps)->Arg(0)->Arg(1)->Iterations(400)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Undo and redo of a change of four layers; argument 1 includes what the screen then shows again.
void undoOfFourLayers(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const double plain = plainPassSeconds(*doc);
    for (int64_t i = 1; i <= 4; ++i) {
        doc->layer(i).tiles().forEachTile(
            [&](int64_t index, const Tile&) { doc->layer(i).writableTile(index).writablePixels()[0] ^= 1; });
    }
    doc->commit(QStringLiteral("Change"));
    const Stopwatch watch;
    for (auto _ : state) {
        if (doc->canUndo())
            doc->undo();
        else
            doc->redo();
        if (state.range(0) == 1) benchmark::DoNotOptimize(displayImages(*doc, doc->takeDirtyTiles()));
    }
    state.counters["ratio"] = watch.seconds() / static_cast<double>(state.iterations()) / plain;
}
BENCHMARK(undoOfFourLayers)->Arg(0)->Arg(1)->MinTime(0.5)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

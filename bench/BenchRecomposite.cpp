#include "PaintedPicture.h"
#include "PlainPass.h"
#include "app/canvas/CanvasPresentation.h"

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// All 135 tiles of five layers, one of them in overlay.
void fullRecomposite(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    CanvasPresentation screen;
    screen.show(doc.get());
    screen.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}), 1);
    doc->markAllDirty();
    const std::vector<DirtyTile> tiles = doc->takeDirtyParts();
    const Stopwatch watch;
    for (auto _ : state) benchmark::DoNotOptimize(screen.update(tiles));
    const double each = watch.seconds() / static_cast<double>(state.iterations());
    state.counters["tiles"] = static_cast<double>(tiles.size());
    state.counters["ratio"] = each / plainPassSeconds(*doc);
}
BENCHMARK(fullRecomposite)->MinTime(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

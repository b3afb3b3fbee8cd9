// Flat colour over a whole 4K layer. Undone after each pass, so that every one begins with tiles that history holds.
#include "PaintedPicture.h"
#include "PlainPass.h"
#include "core/SeededRandom.h"
#include "operations/Fill.h"
#include "operations/Gradient.h"
#include "operations/LayerOperations.h"

#include <cstring>
#include <functional>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// `plain` holds as much memory as the operation writes.
void timeFill(benchmark::State& state, PaintDocument& doc, const PaintDocument& plain,
              const std::function<void()>& fill) {
    double whole = 0;
    for (auto _ : state) {
        const Stopwatch watch;
        fill();
        const double seconds = watch.seconds();
        whole += seconds;
        state.SetIterationTime(seconds);
        doc.revertToLastCommit();
    }
    state.counters["ratio"] = whole / static_cast<double>(state.iterations()) / plainPassSeconds(plain);
}

/// Crossing lines a few pixels apart, drawn by a hand that lifts: a maze that hangs together nearly everywhere.
void drawLineArt(Layer& layer) {
    constexpr PixelBytes black{0, 0, 0, 255};
    SeededRandom random(5);
    for (int64_t index = 0; index < layer.grid().count(); ++index) {
        uint8_t* pixels = layer.writableTile(index).writablePixels();
        for (int y = 0; y < kTileSize; ++y) {
            for (int x = 0; x < kTileSize; ++x) {
                const bool onLine = (x + y) % 9 == 0 || (x - y + kTileSize) % 11 == 0;
                if (onLine && random.unit() > 0.2)
                    std::memcpy(pixels + (y * kTileSize + x) * 4, black.data(), 4);
            }
        }
    }
}

/// Arguments: contiguous, and opacity in hundredths. Grained paper, all within the tolerance.
void bucketOnPaper(benchmark::State& state) {
    const auto doc = paintedPicture(0);
    const FillOptions options{.contiguous = state.range(0) == 1};
    const double opacity = static_cast<double>(state.range(1)) / 100;
    timeFill(state, *doc, *doc, [&] { bucketFill(*doc, 1000, 1000, {0.7, 0.1, 0.2}, options, opacity); });
}
BENCHMARK(bucketOnPaper)
    ->ArgsProduct({{1, 0}, {100, 50}})
    ->MinTime(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// An empty layer above the paper.
void bucketOnEmptyLayer(benchmark::State& state) {
    const auto doc = paintedPicture(0);
    addLayer(*doc);
    doc->commit(QStringLiteral("New Layer"));
    timeFill(state, *doc, *doc, [&] { bucketFill(*doc, 1000, 1000, {0.7, 0.1, 0.2}, {}, 1); });
}
BENCHMARK(bucketOnEmptyLayer)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Argument: contiguous.
void bucketInLineArt(benchmark::State& state) {
    const auto doc = paintedPicture(0);
    drawLineArt(doc->activeLayer());
    doc->commit(QStringLiteral("Lines"));
    timeFill(state, *doc, *doc, [&] {
        bucketFill(*doc, 1001, 1001, {0.7, 0.1, 0.2}, {.contiguous = state.range(0) == 1}, 1);
    });
}
BENCHMARK(bucketInLineArt)->Arg(1)->Arg(0)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Looks at five layers and paints one; the finished picture differs everywhere, so that the fill goes on.
void bucketOnAllLayers(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const auto plain = paintedPicture(0);
    const FillOptions options{.tolerance = 250, .sampleAllLayers = true};
    timeFill(state, *doc, *plain, [&] { bucketFill(*doc, 1000, 1000, {0.7, 0.1, 0.2}, options, 1); });
}
BENCHMARK(bucketOnAllLayers)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Argument: the kind.
void gradientOverPaper(benchmark::State& state) {
    const auto doc = paintedPicture(0);
    const auto kind = static_cast<GradientKind>(state.range(0));
    timeFill(state, *doc, *doc, [&] {
        gradientFill(*doc, {300, 200}, {kWidth - 500, kHeight - 100}, kind, {0.05, 0.01, 0.13},
                     {0.9, 0.4, 0.2, 0.5}, 1);
    });
}
BENCHMARK(gradientOverPaper)->DenseRange(0, 2)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

// A five-layer 4K picture in another size or turned, and lifted pixels put down under a transform.
#include "PaintedPicture.h"
#include "PlainPass.h"
#include "core/selection/Selection.h"
#include "operations/Floating.h"
#include "operations/Reshape.h"

#include <functional>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// `plain` holds as much memory as the operation reads.
void timeChange(benchmark::State& state, PaintDocument& doc, const PaintDocument& plain,
                const std::function<void()>& change) {
    double whole = 0;
    for (auto _ : state) {
        const Stopwatch watch;
        change();
        const double seconds = watch.seconds();
        whole += seconds;
        state.SetIterationTime(seconds);
        doc.revertToLastCommit();
    }
    state.counters["ratio"] = whole / static_cast<double>(state.iterations()) / plainPassSeconds(plain);
}

/// Argument: the new size in hundredths of the old one.
void imageSize(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    timeChange(state, *doc, *doc,
               [&] { resizeImage(*doc, kWidth * state.range(0) / 100, kHeight * state.range(0) / 100); });
}
BENCHMARK(imageSize)->Arg(50)->Arg(200)->Arg(73)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

void quarterTurn(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    timeChange(state, *doc, *doc, [&] { rotate(*doc, 1); });
}
BENCHMARK(quarterTurn)->MinTime(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Arguments: degrees, and the scale in hundredths. A square of 1000 x 1000 pixels about its middle.
void placeTransformed(benchmark::State& state) {
    constexpr double kSide = 1000;
    const auto doc = paintedPicture(0);
    QPainterPath square;
    square.addRect(1000, 500, kSide, kSide);
    doc->selection = Selection::make(square, SelectionOp::replace, {}, kWidth, kHeight, Antialias::no);
    const auto floating = liftFloating(*doc);
    doc->revertToLastCommit();
    QTransform transform;
    transform.translate(1500, 1000);
    transform.rotate(static_cast<double>(state.range(0)));
    transform.scale(static_cast<double>(state.range(1)) / 100, static_cast<double>(state.range(1)) / 100);
    transform.translate(-kSide / 2, -kSide / 2);
    PaintDocument plain(1000, 1000, 72, std::nullopt);
    plain.activeLayer().load(*floating->picture(floating->origin));
    timeChange(state, *doc, plain, [&] { placeFloating(*doc, *floating, transform); });
}
BENCHMARK(placeTransformed)
    ->Args({0, 100})
    ->ArgsProduct({{0, 30}, {40, 150}})
    ->Args({30, 100})
    ->MinTime(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

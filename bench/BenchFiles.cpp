#include "PaintedPicture.h"
#include "PlainPass.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// Into bytes, without the disk; `megabytes` is the size of the file.
void saveFiveLayers(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const Stopwatch watch;
    qsizetype size = 0;
    for (auto _ : state) size = PaintFile::encode(*doc).size();
    state.counters["megabytes"] = static_cast<double>(size) / 1e6;
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK(saveFiveLayers)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);

void openFiveLayers(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const QByteArray file = PaintFile::encode(*doc);
    const Stopwatch watch;
    for (auto _ : state) benchmark::DoNotOptimize(PaintFile::decode(bytesOf(file)));
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK(openFiveLayers)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

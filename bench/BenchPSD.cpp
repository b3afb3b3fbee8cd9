#include "PaintedPicture.h"
#include "PlainPass.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace qirn::bench {

namespace {

/// Into bytes, without the disk; `megabytes` is the size of the file.
void exportLayeredPSD(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const Stopwatch watch;
    qsizetype size = 0;
    for (auto _ : state) size = PSDFile::write(*doc, PSDFile::Layered::yes).size();
    state.counters["megabytes"] = static_cast<double>(size) / 1e6;
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK(exportLayeredPSD)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

void openLayeredPSD(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    const QByteArray file = PSDFile::write(*doc, PSDFile::Layered::yes);
    const Stopwatch watch;
    for (auto _ : state) benchmark::DoNotOptimize(PSDFile::read(bytesOf(file)));
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK(openLayeredPSD)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

/// The planes of one painted layer as rows of the canvas, 33 MB: `ratio` is against a copy of the same rows.
class Rows {
public:
    explicit Rows(int64_t layer) {
        const auto doc = paintedPicture(1);
        for (const auto& plane : PSDFile::planes(*doc->layer(layer).toBuffer(), doc->grid().bounds()))
            bytes_.insert(bytes_.end(), plane.begin(), plane.end());
        packed_.resize(bytes_.size() + bytes_.size() / 64 + PSDFile::kPackingSlack);
    }

    template <class Pack> void forEachRow(Pack pack) {
        uint8_t* out = packed_.data();
        for (std::size_t at = 0; at < bytes_.size(); at += kWidth)
            out = pack(std::span<const uint8_t>(bytes_.data() + at, kWidth), out);
    }
    double copySeconds() {
        const Stopwatch watch;
        for (int pass = 0; pass < 5; ++pass) {
            forEachRow([](std::span<const uint8_t> row, uint8_t* out) {
                std::memcpy(out, row.data(), row.size());
                benchmark::DoNotOptimize(out);
                return out + row.size();
            });
        }
        return watch.seconds() / 5;
    }
    std::size_t size() const { return bytes_.size(); }

private:
    std::vector<uint8_t> bytes_;
    std::vector<uint8_t> packed_;
};

void packRows(benchmark::State& state) {
    Rows rows(state.range(0));
    rows.copySeconds(); // brings the memory in
    const Stopwatch watch;
    for (auto _ : state) rows.forEachRow(state.range(1) ? PSDFile::packBits : PSDFile::packBitsPlainly);
    const double seconds = watch.seconds() / static_cast<double>(state.iterations());
    state.counters["MB/s"] = static_cast<double>(rows.size()) / 1e6 / seconds;
    state.counters["ratio"] = seconds / rows.copySeconds();
}
// The grained paper, which hardly packs, and the strokes; the plain form first.
BENCHMARK(packRows)
    ->ArgNames({"layer", "fast"})
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench

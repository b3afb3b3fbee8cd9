// Native documents. Both questions agree with each other, and what opens is saved and opened again as the same
// picture, in the same bytes.
#include "MemoryWatch.h"
#include "core/PaintDocument.h"
#include "core/PaintEngine.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <map>
#include <set>
#include <tuple>

using namespace qirn;

namespace {

constexpr int64_t kMostPlacesToCopy =
    4096; // layers times slots: saving a huge canvas again takes too long here
constexpr int64_t kSlotBytes = 16;

/// Of a canvas that can be opened, otherwise none.
int64_t slotsOf(const PaintFile::Manifest& manifest) {
    const auto isSide = [](int64_t side) { return side >= 1 && side <= PaintEngine::maxCanvasSide; };
    if (!isSide(manifest.width) || !isSide(manifest.height)) return 0;
    return TileGrid(manifest.width, manifest.height).count();
}

/// What a document needs: each tile that one of its slots ends up with, once, and an array of slots for each layer
/// that has any. A file that is refused may have been read up to its last tile.
int64_t bytesNeededBy(const PaintFile::Manifest& manifest) {
    using Source = std::tuple<int64_t, int64_t, int64_t>;
    std::set<Source> sources;
    int64_t slots = 0;
    for (const PaintFile::LayerEntry& layer : manifest.layers) {
        std::map<int64_t, Source> last;
        for (const PaintFile::TileEntry& tile : layer.tiles) last[tile.i] = {tile.o, tile.n, tile.c};
        for (const auto& [slot, source] : last) sources.insert(source);
        if (!last.empty()) slots += slotsOf(manifest);
    }
    return static_cast<int64_t>(sources.size()) * kTileBytes + slots * kSlotBytes;
}

void checkCopy(PaintDocument& doc) {
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(1772368205).toUTC();
    const QByteArray file = PaintFile::encode(doc, moment);
    const auto copy = PaintFile::decode(bytesOf(file));
    require(copy->fingerprint() == doc.fingerprint());
    require(copy->dpi == doc.dpi && copy->activeIndex() == doc.activeIndex() && copy->onion == doc.onion);
    require(PaintFile::encode(*copy, moment) == file);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setConcurrency(1); // the same order of allocations each time
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::span<const uint8_t> file(data, size);
    std::optional<PaintFile::Info> info;
    {
        fuzz::MemoryWatch memory;
        info = PaintFile::infoOf(file);
        memory.requireWithin(0);
    }
    std::unique_ptr<PaintDocument> doc;
    {
        const int64_t needed = info ? bytesNeededBy(PaintFile::manifestOf(file).manifest) : 0;
        fuzz::MemoryWatch memory;
        try {
            doc = PaintFile::decode(file);
        } catch (const PaintFileError& error) {
            require(!error.description().isEmpty());
        }
        memory.requireWithin(needed);
    }
    if (!doc) return 0;
    require(info && info->width == doc->grid().width && info->height == doc->grid().height);
    if (doc->layerCount() * doc->grid().count() <= kMostPlacesToCopy) checkCopy(*doc);
    return 0;
}

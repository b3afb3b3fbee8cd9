#include "operations/flood/FloodMask.h"

#include "compositing/CompositeInputs.h"
#include "operations/flood/PixelMatcher.h"
#include "operations/flood/TileFlood.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace qirn {

namespace {

/// The pixels that the fill compares, a tile at a time, so that only tiles that it reaches are read or composited.
class Source {
public:
    Source(const PaintDocument& doc, const FillOptions& options) : doc_(doc), all_(options.sampleAllLayers) {
        if (all_) inputs_ = compositeInputs(doc, ForDisplay::no);
    }

    PixelBytes pixel(int64_t x, int64_t y) const {
        return all_ ? compositePixel(doc_, x, y) : doc_.activeLayer().pixel(x, y);
    }

    /// Calls `visit(pixels)` with a tile's pixels, null where all are transparent.
    template <class Visit> void withTile(int64_t index, Visit visit) const {
        if (!all_) {
            const Tile* tile = doc_.activeLayer().tile(index);
            visit(tile ? tile->pixels() : nullptr);
            return;
        }
        const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
        visit(Compositor::compositeTile(index, inputs_, pixels.get()) ? pixels.get() : nullptr);
    }

private:
    const PaintDocument& doc_;
    const bool all_;
    std::vector<CompositeInput> inputs_;
};

/// State of one tile during the fill. A tile whose pixels within the canvas all match, or all do not, needs no bits
/// and is filled at once.
struct FloodTile {
    enum class State : uint8_t { unseen, closed, open, filled, mixed };
    State state = State::unseen;
    bool isWaiting = false;
    // of a tile with both kinds of pixels; those beyond the canvas edge do not match
    std::unique_ptr<TileFlood> flood;
    TileEdges entries; // edge pixels at which the fill enters
    TileEdges reached; // edge pixels at which it leaves

    void classify(const Source& source, const PixelMatcher& matcher, const TileGrid& grid, int64_t index) {
        if (state != State::unseen) return;
        source.withTile(index, [&](const uint8_t* pixels) {
            if (pixels)
                match(pixels, matcher, grid.rectOf(index));
            else
                state = matcher.matchesTransparent() ? State::open : State::closed;
        });
    }

    void fill() {
        isWaiting = false;
        if (state == State::open) {
            state = State::filled;
            const BitRow all = ~BitRow();
            reached = {all, all, all, all};
        } else if (flood) {
            flood->enter(std::exchange(entries, {}));
            reached = flood->spread();
        }
    }

private:
    void match(const uint8_t* pixels, const PixelMatcher& matcher, const IRect& part) {
        TileBits like;
        matcher.match(pixels, like);
        const BitRow columns = BitRow::first(static_cast<int>(part.w));
        BitRow any, every = columns;
        for (int y = 0; y < kTileSize; ++y) {
            like[y] &= y < part.h ? columns : BitRow();
            any |= like[y];
            if (y < part.h) every &= like[y];
        }
        state = any.isEmpty() ? State::closed : every == columns ? State::open : State::mixed;
        if (state == State::mixed) flood = std::make_unique<TileFlood>(like);
    }
};

/// A fill that spreads over the canvas in waves: all tiles that it has entered are filled in parallel, and the edge
/// pixels that they reach enter the tiles of the next wave.
class Flood {
public:
    Flood(const PaintDocument& doc, int64_t x, int64_t y, const FillOptions& options)
        : source_(doc, options),
          matcher_(source_.pixel(x, y), options.tolerance),
          grid_(doc.grid()),
          tiles_(checkedSize(grid_.count())) {}

    void fillFrom(int64_t x, int64_t y) {
        const int64_t index = grid_.indexAt(x, y);
        FloodTile& first = tileAt(index);
        first.classify(source_, matcher_, grid_, index);
        if (first.flood) first.flood->enter(static_cast<int>(x % kTileSize), static_cast<int>(y % kTileSize));
        std::vector<int64_t> wave{index};
        while (!wave.empty()) {
            concurrentPerform(static_cast<int64_t>(wave.size()), [&](int64_t i) {
                const int64_t tile = wave[checkedSize(i)];
                tileAt(tile).classify(source_, matcher_, grid_, tile);
                tileAt(tile).fill();
            });
            std::vector<int64_t> next;
            for (int64_t tile : wave) enterNeighbors(tile, next);
            wave = std::move(next);
        }
    }

    void fillEverywhere() {
        concurrentPerform(grid_.count(), [&](int64_t index) {
            FloodTile& tile = tileAt(index);
            tile.classify(source_, matcher_, grid_, index);
            if (tile.state == FloodTile::State::open) tile.state = FloodTile::State::filled;
            if (tile.flood) tile.flood->fillAll();
        });
    }

    TileMask mask() const {
        TileMask mask(grid_);
        for (int64_t index = 0; index < grid_.count(); ++index) {
            const FloodTile& tile = tiles_[checkedSize(index)];
            if (tile.state == FloodTile::State::filled) mask.coverWhole(index);
            if (tile.flood) mask.setBits(index, tile.flood->filled());
        }
        return mask;
    }

private:
    FloodTile& tileAt(int64_t index) { return tiles_[checkedSize(index)]; }

    /// Into the tiles beside a tile, through the edges that the fill reached there.
    void enterNeighbors(int64_t index, std::vector<int64_t>& wave) {
        const TileEdges reached = std::exchange(tileAt(index).reached, {});
        const int64_t column = index % grid_.cols;
        const auto enter = [&](int64_t to, BitRow TileEdges::*edge, const BitRow& pixels) {
            FloodTile& tile = tileAt(to);
            if (pixels.isEmpty() || tile.state == FloodTile::State::closed ||
                tile.state == FloodTile::State::filled)
                return;
            tile.entries.*edge |= pixels;
            if (!std::exchange(tile.isWaiting, true)) wave.push_back(to);
        };
        if (index >= grid_.cols) enter(index - grid_.cols, &TileEdges::bottom, reached.top);
        if (index + grid_.cols < grid_.count()) enter(index + grid_.cols, &TileEdges::top, reached.bottom);
        if (column > 0) enter(index - 1, &TileEdges::right, reached.left);
        if (column + 1 < grid_.cols) enter(index + 1, &TileEdges::left, reached.right);
    }

    const Source source_;
    const PixelMatcher matcher_;
    const TileGrid grid_;
    std::vector<FloodTile> tiles_;
};

} // namespace

std::optional<FloodMask> fillMask(const PaintDocument& doc, int64_t x, int64_t y,
                                  const FillOptions& options) {
    if (!doc.grid().bounds().contains(x, y)) return std::nullopt;
    Flood flood(doc, x, y, options);
    if (options.contiguous)
        flood.fillFrom(x, y);
    else
        flood.fillEverywhere();
    TileMask mask = flood.mask();
    constexpr int64_t mostRounds = 4;
    for (int64_t round = 0; round < std::min(options.expand, mostRounds); ++round) mask = mask.grown();
    const IRect bounds = mask.bounds();
    return FloodMask{std::move(mask), bounds};
}

} // namespace qirn

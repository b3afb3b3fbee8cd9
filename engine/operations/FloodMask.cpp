#include "operations/FloodMask.h"

#include "compositing/CompositeInputs.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace qirn {

namespace {

/// Pixels as the fill sees them, a tile at a time, so that only what the fill reaches is ever read.
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

constexpr uint8_t kClosed = 0;   // does not match
constexpr uint8_t kOpen = 1;     // matches, not reached so far
constexpr uint8_t kFilled = 255; // matches and is covered

/// Tells whether a pixel is like the clicked one: none of its four bytes is further away than the tolerance.
class Matcher {
public:
    Matcher(const PixelBytes& target, int64_t tolerance) {
        const int limit = static_cast<int>(std::clamp<int64_t>(tolerance, 0, 255));
        for (std::size_t i = 0; i < kTileRowBytes; ++i) {
            const int lowest = std::max(target[i % 4] - limit, 0);
            lowest_[i] = static_cast<uint8_t>(lowest);
            span_[i] = static_cast<uint8_t>(std::min(target[i % 4] + limit, 255) - lowest);
        }
    }

    bool matchesTransparent() const { return std::all_of(lowest_.begin(), lowest_.begin() + 4, isZero); }

    /// `kOpen` or `kClosed` for each pixel of a tile's row; returns how many are open.
    int matchRow(const uint8_t* pixels, int64_t count, uint8_t* out) const {
        std::array<uint8_t, kTileRowBytes> near;
        for (std::size_t i = 0; i < kTileRowBytes; ++i) {
            near[i] = static_cast<uint8_t>(pixels[i] - lowest_[i]) <= span_[i] ? 255 : 0;
        }
        int open = 0;
        for (int64_t x = 0; x < count; ++x) {
            uint32_t channels;
            std::memcpy(&channels, near.data() + x * 4, 4);
            out[x] = channels == 0xFFFFFFFFu ? kOpen : kClosed;
            open += out[x];
        }
        return open;
    }

private:
    static bool isZero(uint8_t byte) { return byte == 0; }

    // Repeated for the four channels of each pixel of a row.
    std::array<uint8_t, kTileRowBytes> lowest_;
    std::array<uint8_t, kTileRowBytes> span_;
};

/// Every byte is written, changed or not: so the compiler does many at once.
void replaceAll(TileMask::Bytes& bytes, uint8_t from, uint8_t to) {
    std::transform(bytes.get(), bytes.get() + kTilePixels, bytes.get(),
                   [=](uint8_t byte) { return byte == from ? to : byte; });
}

/// Pixels of one tile where a fill may come in, all edges inclusive.
struct Stretch {
    uint8_t left, right, top, bottom;
};
constexpr uint8_t kLast = kTileSize - 1;

/// One tile of the canvas as the fill goes on. A tile whose pixels within the canvas are all alike to the matcher
/// has no bytes and is filled at once.
struct FloodTile {
    enum class State : uint8_t { unseen, closed, open, filled, mixed };
    State state = State::unseen;
    TileMask::Bytes bytes; // of a mixed tile; kClosed beyond the canvas edge
    std::vector<Stretch> entries;

    void look(const Source& source, const Matcher& matcher, const TileGrid& grid, int64_t index) {
        source.withTile(index, [&](const uint8_t* pixels) {
            if (pixels)
                match(pixels, matcher, grid.rectOf(index));
            else
                state = matcher.matchesTransparent() ? State::open : State::closed;
        });
    }

private:
    void match(const uint8_t* pixels, const Matcher& matcher, const IRect& part) {
        bytes = std::make_unique<uint8_t[]>(kTilePixels);
        int64_t open = 0;
        for (int64_t y = 0; y < part.h; ++y) {
            open += matcher.matchRow(pixels + y * kTileRowBytes, part.w, bytes.get() + y * kTileSize);
        }
        state = open == 0 ? State::closed : open == part.w * part.h ? State::open : State::mixed;
        if (state != State::mixed) bytes.reset();
    }
};

/// A fill on its way over the canvas. It never recurses: within a tile it runs along rows with a stack of
/// stretches still to look at, and what crosses the edge of a tile waits there for the next wave of tiles.
class Flood {
public:
    Flood(const PaintDocument& doc, int64_t x, int64_t y, const FillOptions& options)
        : source_(doc, options),
          matcher_(source_.pixel(x, y), options.tolerance),
          grid_(doc.grid()),
          tiles_(static_cast<std::size_t>(grid_.count())) {}

    void fillFrom(int64_t x, int64_t y) {
        const auto px = static_cast<uint8_t>(x % kTileSize), py = static_cast<uint8_t>(y % kTileSize);
        enter((y / kTileSize) * grid_.cols + x / kTileSize, {px, px, py, py});
        while (!wave_.empty()) {
            const std::vector<int64_t> wave = std::exchange(wave_, {});
            look(wave.size(), [&](int64_t i) { return wave[static_cast<std::size_t>(i)]; });
            for (int64_t index : wave) fill(index);
        }
    }

    void fillEverywhere() {
        look(tiles_.size(), [](int64_t i) { return i; });
        for (FloodTile& tile : tiles_) {
            if (tile.state == FloodTile::State::open) tile.state = FloodTile::State::filled;
            if (tile.bytes) replaceAll(tile.bytes, kOpen, kFilled);
        }
    }

    TileMask takeMask() {
        TileMask mask(grid_);
        for (int64_t index = 0; index < grid_.count(); ++index) {
            FloodTile& tile = tileAt(index);
            if (tile.state == FloodTile::State::filled) mask.coverWhole(index);
            if (!tile.bytes || !std::memchr(tile.bytes.get(), kFilled, kTilePixels)) continue;
            replaceAll(tile.bytes, kOpen, kClosed);
            mask.setBytes(index, std::move(tile.bytes));
        }
        return mask;
    }

private:
    FloodTile& tileAt(int64_t index) { return tiles_[static_cast<std::size_t>(index)]; }

    template <class IndexOf> void look(std::size_t count, IndexOf indexOf) {
        concurrentPerform(static_cast<int64_t>(count), [&](int64_t i) {
            const int64_t index = indexOf(i);
            FloodTile& tile = tileAt(index);
            if (tile.state == FloodTile::State::unseen) tile.look(source_, matcher_, grid_, index);
        });
    }

    void enter(int64_t index, const Stretch& at) {
        FloodTile& tile = tileAt(index);
        if (tile.state == FloodTile::State::closed || tile.state == FloodTile::State::filled) return;
        if (tile.entries.empty()) wave_.push_back(index);
        tile.entries.push_back(at);
    }

    void enterAbove(int64_t index, uint8_t left, uint8_t right) {
        if (index >= grid_.cols) enter(index - grid_.cols, {left, right, kLast, kLast});
    }
    void enterBelow(int64_t index, uint8_t left, uint8_t right) {
        if (index + grid_.cols < grid_.count()) enter(index + grid_.cols, {left, right, 0, 0});
    }
    void enterLeft(int64_t index, uint8_t top, uint8_t bottom) {
        if (index % grid_.cols > 0) enter(index - 1, {kLast, kLast, top, bottom});
    }
    void enterRight(int64_t index, uint8_t top, uint8_t bottom) {
        if ((index + 1) % grid_.cols > 0) enter(index + 1, {0, 0, top, bottom});
    }

    void fill(int64_t index) {
        FloodTile& tile = tileAt(index);
        std::vector<Stretch> stack = std::exchange(tile.entries, {});
        if (tile.state == FloodTile::State::open) {
            tile.state = FloodTile::State::filled;
            enterAbove(index, 0, kLast);
            enterBelow(index, 0, kLast);
            enterLeft(index, 0, kLast);
            enterRight(index, 0, kLast);
        }
        if (tile.state != FloodTile::State::mixed) return;
        while (!stack.empty()) {
            const Stretch stretch = stack.back();
            stack.pop_back();
            for (int y = stretch.top; y <= stretch.bottom; ++y) {
                fillRuns(index, tile.bytes.get() + y * kTileSize, stretch, static_cast<uint8_t>(y), stack);
            }
        }
    }

    /// Fills every run of open pixels that begins, ends or passes within the stretch.
    void fillRuns(int64_t index, uint8_t* row, const Stretch& stretch, uint8_t y,
                  std::vector<Stretch>& stack) {
        const uint8_t* end = row + stretch.right + 1;
        for (uint8_t* at = row + stretch.left; at < end;) {
            at = static_cast<uint8_t*>(std::memchr(at, kOpen, static_cast<std::size_t>(end - at)));
            if (!at) return;
            const uint8_t* before = at;
            while (before > row && before[-1] == kOpen) --before;
            const auto left = static_cast<uint8_t>(before - row);
            while (at < row + kTileSize && *at == kOpen) ++at;
            const auto right = static_cast<uint8_t>(at - row - 1);
            std::fill(row + left, at, kFilled);

            if (y > 0)
                stack.push_back({left, right, static_cast<uint8_t>(y - 1), static_cast<uint8_t>(y - 1)});
            else
                enterAbove(index, left, right);
            if (y < kLast)
                stack.push_back({left, right, static_cast<uint8_t>(y + 1), static_cast<uint8_t>(y + 1)});
            else
                enterBelow(index, left, right);
            if (left == 0) enterLeft(index, y, y);
            if (right == kLast) enterRight(index, y, y);
        }
    }

    const Source source_;
    const Matcher matcher_;
    const TileGrid grid_;
    std::vector<FloodTile> tiles_;
    std::vector<int64_t> wave_; // tiles with entries to look at
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
    TileMask mask = flood.takeMask();
    constexpr int64_t mostRounds = 4;
    for (int64_t round = 0; round < std::min(options.expand, mostRounds); ++round) mask = mask.grown();
    const IRect bounds = mask.bounds();
    return FloodMask{std::move(mask), bounds};
}

} // namespace qirn

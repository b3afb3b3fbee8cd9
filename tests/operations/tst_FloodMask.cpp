#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "operations/FloodMask.h"
#include "operations/LayerOperations.h"
#include "operations/TileFlood.h"
#include "operations/TileMatch.h"
#include "platform/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <algorithm>
#include <deque>

using namespace qirn;
using namespace qirn::test;

namespace {

using Mask = std::vector<uint8_t>; // of the canvas, row by row

bool matches(const PixelBytes& a, const PixelBytes& target, int64_t tolerance) {
    if (a == target) return true;
    if (tolerance < 1) return false;
    for (std::size_t c = 0; c < 4; ++c) {
        if (std::abs(a[c] - target[c]) > std::min<int64_t>(tolerance, 255)) return false;
    }
    return true;
}

/// A queue of single pixels, and growth round by round over the whole canvas.
Mask simpleFill(const RGBABuffer& source, int64_t x, int64_t y, const FillOptions& options) {
    const int64_t w = source.width(), h = source.height();
    const PixelBytes target = source.pixel(x, y);
    Mask mask(static_cast<std::size_t>(w * h));
    const auto at = [&](int64_t px, int64_t py) -> uint8_t& {
        return mask[static_cast<std::size_t>(py * w + px)];
    };
    const auto inside = [&](int64_t px, int64_t py) { return px >= 0 && py >= 0 && px < w && py < h; };
    constexpr std::pair<int, int> sides[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    if (options.contiguous) {
        std::deque<std::pair<int64_t, int64_t>> queue{{x, y}};
        at(x, y) = 255;
        while (!queue.empty()) {
            const auto [px, py] = queue.front();
            queue.pop_front();
            for (const auto& [dx, dy] : sides) {
                const int64_t nx = px + dx, ny = py + dy;
                if (!inside(nx, ny) || at(nx, ny) ||
                    !matches(source.pixel(nx, ny), target, options.tolerance))
                    continue;
                at(nx, ny) = 255;
                queue.emplace_back(nx, ny);
            }
        }
    } else {
        for (int64_t py = 0; py < h; ++py) {
            for (int64_t px = 0; px < w; ++px) {
                if (matches(source.pixel(px, py), target, options.tolerance)) at(px, py) = 255;
            }
        }
    }
    for (int64_t round = 0; round < std::min<int64_t>(options.expand, 4); ++round) {
        const Mask before = mask;
        for (int64_t py = 0; py < h; ++py) {
            for (int64_t px = 0; px < w; ++px) {
                for (const auto& [dx, dy] : sides) {
                    const int64_t nx = px + dx, ny = py + dy;
                    if (inside(nx, ny) && before[static_cast<std::size_t>(ny * w + nx)] == 255)
                        at(px, py) = 255;
                }
            }
        }
    }
    return mask;
}

/// Empty when the mask is the wanted one and its bounds are tight, otherwise what is wrong.
QString difference(const std::optional<FloodMask>& flood, const Mask& wanted, const TileGrid& grid) {
    if (!flood) return QStringLiteral("no mask");
    IRect box;
    for (int64_t y = 0; y < grid.height; ++y) {
        for (int64_t x = 0; x < grid.width; ++x) {
            const uint8_t byte = wanted[static_cast<std::size_t>(y * grid.width + x)];
            if (byte) box = box.united({x, y, 1, 1});
            if (flood->mask.covers(x, y) != (byte != 0))
                return QStringLiteral("at %1,%2, where the simple fill has %3").arg(x).arg(y).arg(byte);
        }
    }
    return flood->bounds == box ? QString() : flood->bounds.description() + ", not " + box.description();
}

/// Grey of three shades 10 apart, drawn for each block of so many pixels; some blocks are transparent.
std::unique_ptr<PaintDocument> maze(int64_t width, int64_t height, int64_t block, uint64_t seed) {
    auto doc = std::make_unique<PaintDocument>(width, height, 72, std::nullopt);
    SeededRandom random(seed);
    for (int64_t y = 0; y < height; y += block) {
        for (int64_t x = 0; x < width; x += block) {
            const uint64_t draw = random.next() % 20;
            const auto shade = static_cast<uint8_t>(100 + draw % 3 * 10);
            if (draw > 0)
                paintRect(*doc, doc->activeLayer(), {x, y, block, block}, {shade, shade, shade, 255});
        }
    }
    return doc;
}

} // namespace

class tst_FloodMask : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mazesAreFilledAsByAQueueOfPixels_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("block");
        QTest::newRow("pixels across seams") << 530 << 300 << 1;
        QTest::newRow("corridors") << 700 << 520 << 3;
        QTest::newRow("blocks as large as tiles") << 1000 << 800 << 128;
        QTest::newRow("one pixel") << 1 << 1 << 1;
        QTest::newRow("one column") << 1 << 2000 << 2;
        QTest::newRow("one very long row") << 30000 << 1 << 5;
    }
    void mazesAreFilledAsByAQueueOfPixels() {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, block);
        for (uint64_t seed = 1; seed <= 12; ++seed) {
            const auto doc = maze(width, height, block, seed);
            const auto source = doc->activeLayer().toBuffer();
            SeededRandom random(seed);
            const auto x = static_cast<int64_t>(random.unit() * width);
            const auto y = static_cast<int64_t>(random.unit() * height);
            // With 10 two of the three shades are alike, which is where mazes wind the most.
            const FillOptions options{.tolerance = seed % 3 == 0 ? 0 : 10,
                                      .contiguous = seed % 4 != 0,
                                      .expand = seed % 6 == 0 ? 9 : static_cast<int64_t>(seed % 6) - 1};
            const QString wrong =
                difference(fillMask(*doc, x, y, options), simpleFill(*source, x, y, options), doc->grid());
            QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1: %2").arg(seed).arg(wrong)));
        }
    }

    void matchingIsTheSameWithAnyInstructions() {
        const auto pixels = noise(256, 256, 9);
        for (int tolerance : {-7, 0, 1, 40, 200, 255, 100'000}) {
            // Limits at both ends of what a byte holds.
            for (const PixelBytes& clicked : {pixels->pixel(3, 3), PixelBytes{}, {255, 255, 255, 255}}) {
                for (const std::string& name : instructionSets()) {
                    useInstructionSet(name);
                    TileBits like;
                    Matcher(clicked, tolerance).match(pixels->row(0), like);
                    for (int i = 0; i < kTilePixels; ++i) {
                        if (like[i / 256].has(i % 256) !=
                            matches(pixels->pixel(i % 256, i / 256), clicked, std::clamp(tolerance, 0, 255)))
                            QFAIL(qPrintable(QStringLiteral("%1 with %2").arg(i).arg(name.c_str())));
                    }
                }
            }
        }
        useInstructionSet({});
    }

    void theFinishedPictureIsWhatIsSeen() {
        const auto doc = randomDocument(530, 300, 4, 7);
        const FillOptions options{.tolerance = 90, .contiguous = false, .sampleAllLayers = true, .expand = 0};
        const QString wrong = difference(fillMask(*doc, 260, 150, options),
                                         simpleFill(*flattened(*doc), 260, 150, options), doc->grid());
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
        // The onion skin would show the nearest layer only; the picture has them all.
        PaintDocument ghosts(300, 200, 72, std::nullopt);
        paintRect(ghosts, ghosts.activeLayer(), {0, 0, 150, 200}, {255, 0, 0, 255});
        addLayer(ghosts);
        addLayer(ghosts);
        ghosts.onion.enabled = true;
        const auto flood = fillMask(ghosts, 10, 10, {.sampleAllLayers = true, .expand = 0});
        QCOMPARE(flood->bounds, (IRect{0, 0, 150, 200}));
    }
};

QIRN_TEST(tst_FloodMask)
#include "tst_FloodMask.moc"

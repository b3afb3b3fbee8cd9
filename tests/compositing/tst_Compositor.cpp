#include "compositing/CompositeInputs.h"
#include "compositing/Reference.h"
#include "compositing/ScreenTiles.h"
#include "core/SeededRandom.h"
#include "platform/Parallel.h"
#include "platform/lanes/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

/// One input of noise for a picture of two tiles that are alike; `absent` leaves the slots empty.
CompositeInput noiseInput(SeededRandom& random, bool absent) {
    TileArray tiles(2);
    if (!absent) {
        auto tile = std::make_shared<Tile>();
        std::memcpy(tile->writablePixels(), noise(256, 256, random.next())->data(), kTileBytes);
        // Blank and opaque bands, for which there is special code, and color without coverage, as a damaged file may
        // hold.
        for (int y = 0; y < kTileSize; y += 32) {
            uint8_t* band = tile->writablePixels() + y * kTileRowBytes;
            const uint64_t kind = random.next() % 5;
            if (kind == 0) std::memset(band, 0, 32 * kTileRowBytes);
            for (int i = 3; kind == 1 && i < 32 * kTileRowBytes; i += 4) band[i] = 255;
            for (int i = 3; kind == 2 && i < 32 * kTileRowBytes; i += 4) band[i] = 0;
        }
        tiles.set(0, tile);
        tiles.set(1, tile);
    }
    return {.tiles = tiles};
}

std::vector<CompositeInput> randomStack(uint64_t seed) {
    SeededRandom random(seed);
    const float opacities[] = {1, 1, 0.5f, 0.37f, 1.0f / 255, 0, 1e-30f};
    std::vector<CompositeInput> stack;
    const uint64_t count = random.next() % 8;
    for (uint64_t i = 0; i < count; ++i) {
        CompositeInput input = noiseInput(random, random.next() % 6 == 0);
        input.opacity = opacities[random.next() % std::size(opacities)];
        if (random.next() % 2 == 0) input.mode = BlendMode(random.next() % kBlendModeCount);
        input.clipping = random.next() % 2 == 0;
        input.visible = random.next() % 6 != 0;
        if (random.next() % 4 == 0) input.tint = Tint{0.95f, 0.2f, static_cast<float>(random.unit()), 0.75f};
        stack.push_back(std::move(input));
    }
    return stack;
}

/// Compares one composited tile with the reference; empty when equal.
QString tileDifference(std::span<const CompositeInput> stack) {
    std::vector<uint8_t> got(kTileBytes, 77);
    const bool contributed = Compositor::compositeTile(0, stack, got.data());
    const std::vector<uint8_t> wanted = referenceTile(0, stack);
    for (std::size_t i = 0; i < got.size(); ++i) {
        if (got[i] != wanted[i]) return QString("byte %1: %2 for %3").arg(i).arg(got[i]).arg(wanted[i]);
        if (got[i] > got[i | 3]) return QString("byte %1 above its alpha").arg(i);
    }
    const bool blank = std::all_of(wanted.begin(), wanted.end(), [](uint8_t byte) { return byte == 0; });
    return contributed || blank ? QString() : QString("told that nothing showed");
}

} // namespace

class tst_Compositor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void randomStacksAreThoseOfTheReference() {
        for (const std::string& name : instructionSets()) {
            useInstructionSet(name);
            for (uint64_t seed = 1; seed <= 60; ++seed) {
                const QString difference = tileDifference(randomStack(seed));
                QVERIFY2(difference.isEmpty(), qPrintable(QString("seed %1, ").arg(seed) + difference));
            }
        }
    }

    void theScreenShowsTheRoundedPixelsOverGray() {
        const std::vector<std::string> sets = instructionSets();
        const TileGrid grid(250, 512); // one tile above the other, cut at the right
        SeededRandom random(4);
        for (uint64_t seed = 1; seed <= 12 * sets.size(); ++seed) {
            useInstructionSet(sets[seed / 12 % sets.size()]);
            const std::vector<CompositeInput> stack = randomStack(seed);
            const std::vector<uint8_t> pixels = referenceTile(0, stack);
            IRect part =
                IRect{static_cast<int64_t>(random.next() % 250), static_cast<int64_t>(random.next() % 256),
                      static_cast<int64_t>(1 + random.next() % 250),
                      static_cast<int64_t>(1 + random.next() % 256)}
                    .intersection(grid.rectOf(0));
            // Whole tiles in aligned memory are stored by special code.
            if (seed % 3 != 0) part = grid.rectOf(0);
            const auto index = static_cast<int64_t>(seed % 2), top = index * kTileSize;
            const BlockPool::Block even = BlockPool::take();
            std::vector<uint32_t> uneven(kTilePixels + 1);
            auto* const screen = seed % 3 == 1 ? reinterpret_cast<uint32_t*>(even.get()) : uneven.data() + 1;
            drawForScreen({index, {part.x, part.y + top, part.w, part.h}}, stack, grid, {7.5},
                          reinterpret_cast<uint8_t*>(screen + part.y * kTileSize), kTileRowBytes);
            for (int64_t y = part.y; y < part.maxY(); ++y) {
                for (int64_t x = part.x; x < part.maxX(); ++x) {
                    const uint8_t* p = pixels.data() + (y * kTileSize + x) * 4;
                    const bool dark = (static_cast<int>(static_cast<double>(x) / 7.5) +
                                       static_cast<int>(static_cast<double>(y + top) / 7.5)) %
                                          2 ==
                                      0;
                    const int behind = ((dark ? 179 : 219) * (255 - p[3]) + 127) / 255;
                    QCOMPARE(screen[y * kTileSize + x], qRgb(p[0] + behind, p[1] + behind, p[2] + behind));
                }
            }
        }
    }

    void thePictureDoesNotDependOnThreads() {
        const auto doc = randomDocument(1100, 700, 6, 4);
        setConcurrency(1);
        const auto alone = flattened(*doc);
        for (int threads : {2, 7, 0}) {
            setConcurrency(threads);
            QCOMPARE(firstDifference(*flattened(*doc), *alone), QString());
        }
        for (int64_t y : {0, 255, 256, 699}) {
            for (int64_t x : {0, 255, 256, 1099}) QCOMPARE(compositePixel(*doc, x, y), alone->pixel(x, y));
        }
    }
};

QIRN_TEST(tst_Compositor)
#include "tst_Compositor.moc"

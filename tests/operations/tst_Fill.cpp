#include "PaintReference.h"
#include "core/SeededRandom.h"
#include "operations/Fill.h"
#include "operations/painting/CoveragePainter.h"
#include "platform/lanes/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

const PaintColor kOrange(1, 0.5, 0, 1);

/// Random bits, in some tiles none and in some all.
TileMask patchyMask(const TileGrid& grid) {
    TileMask mask(grid);
    SeededRandom random(8);
    for (int64_t index = 1; index < grid.count(); ++index) {
        if (index % 3 == 1) {
            TileBits bits;
            for (BitRow& row : bits.rows) {
                for (uint64_t& word : row.words)
                    word = random.next() | random.next() << random.next() % 99 % 64;
            }
            bits[7] = bits[8] = ~BitRow();
            mask.setBits(index, bits);
        } else if (index % 3 == 2) {
            mask.coverWhole(index);
        }
    }
    return mask;
}

} // namespace

class tst_Fill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void everyPixelFollowsTheRules() {
        constexpr int64_t w = 700, h = 530;
        const auto before = noise(w, h, 3);
        for (const std::string& name : instructionSets()) {
            useInstructionSet(name);
            for (int bits = 0; bits < 16; ++bits) {
                const bool masked = bits & 1, locked = bits & 2;
                const double opacity = bits & 4 ? 1 : 0.6;
                const auto doc = documentOf(*before);
                Layer& layer = doc->activeLayer();
                layer.setTile(4, nullptr); // whole, in the middle
                layer.alphaLocked = locked;
                if (bits & 8) doc->selection = patchySelection(w, h, 5);
                const TileMask mask = patchyMask(doc->grid());
                const PaintColor color(0.9, 0.31, 0.07, opacity == 1 ? 1 : 0.8);
                const IRect rect{100, 3, 590, 600};
                const float strength = static_cast<float>(opacity) * static_cast<float>(color.a);
                const auto old = layer.toBuffer();
                const auto wanted = pictureOf(w, h, [&](int64_t x, int64_t y) {
                    PixelBytes pixel = old->pixel(x, y);
                    float c = !rect.contains(x, y) || (masked && !mask.covers(x, y)) ? 0 : 255;
                    if (doc->selection) c = c * doc->selection->value(x, y) / 255;
                    if (c > 0) layOnPixel(pixel.data(), straightFloats(color), c * strength / 255, locked);
                    return pixel;
                });
                const IRect painted = masked ? paintCoverage(*doc, rect, layer, color, opacity, mask)
                                             : paintCoverage(*doc, rect, layer, color, opacity);
                QCOMPARE(painted, (IRect{100, 3, 590, h - 3}));
                QCOMPARE(doc->takeDirtyTiles().size(), std::size_t{9});
                QCOMPARE(firstDifference(*layer.toBuffer(), *wanted), QString());
            }
        }
    }

    void lockedLayersAndPlacesOutsideAreLeftAlone() {
        const auto doc = documentOf(*noise(300, 200, 9));
        const uint64_t before = doc->fingerprint();
        QCOMPARE(bucketFill(*doc, 300, 0, kOrange, {}, 1), IRect());
        QCOMPARE(paintCoverage(*doc, {300, 0, 50, 50}, doc->activeLayer(), kOrange, 1), IRect());
        doc->activeLayer().isLocked = true;
        QCOMPARE(bucketFill(*doc, 5, 5, kOrange, {}, 1), IRect());
        QCOMPARE(fillSelection(*doc, kOrange, 1), IRect());
        QVERIFY(doc->takeDirtyTiles().empty());
        doc->activeLayer().isLocked = false;
        QCOMPARE(doc->fingerprint(), before);
        QCOMPARE(fillSelection(*doc, kOrange, 1), doc->grid().bounds());
        QCOMPARE(doc->activeLayer().pixel(299, 199), (PixelBytes{255, 128, 0, 255}));
    }

    void theSelectionLimitsThePaintAndNotTheSearch() {
        // A corridor that leaves the selected columns and comes back to them.
        PaintDocument doc(600, 300, 72, {});
        const Layer& layer = doc.activeLayer();
        paintRect(doc, doc.activeLayer(), {0, 150, 500, 1}, {0, 0, 0, 255});
        doc.selection = selectionOf(600, 300, [](int64_t x, int64_t) { return x < 100 ? 51 : 0; });
        QCOMPARE(bucketFill(doc, 10, 10, kOrange, {.expand = 0}, 1), doc.grid().bounds());
        QCOMPARE(layer.pixel(99, 299), (PixelBytes{51, 26, 0, 51}));
        QCOMPARE(layer.pixel(100, 299), PixelBytes{});
        QCOMPARE(layer.pixel(50, 150), (PixelBytes{0, 0, 0, 255}));
        QVERIFY(!layer.tile(2));
    }

    void theLargestCanvasCostsNoMoreThanWhatIsPainted() {
        PaintDocument doc(30000, 30000, 72, {});
        QCOMPARE(bucketFill(doc, 15000, 15000, kOrange, {}, 1), doc.grid().bounds());
        QCOMPARE(doc.activeLayer().pixel(29999, 29999), (PixelBytes{255, 128, 0, 255}));
        doc.commit(QStringLiteral("Bucket Fill"));
        QCOMPARE(doc.historyBytes(), int64_t{(1 + 117 + 118) * kTileBytes}); // one tile, and the cut ones
        paintRect(doc, doc.activeLayer(), {14000, 14000, 1000, 1000}, {0, 0, 0, 255});
        QCOMPARE(bucketFill(doc, 14500, 14500, PaintColor::white(), {.expand = 0}, 1),
                 (IRect{14000, 14000, 1000, 1000}));
    }
};

QIRN_TEST(tst_Fill)
#include "tst_Fill.moc"

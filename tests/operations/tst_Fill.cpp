#include "PaintReference.h"
#include "core/SeededRandom.h"
#include "operations/CoveragePainter.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"
#include "platform/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

const PaintColor kOrange(1, 0.5, 0, 1);

std::unique_ptr<PaintDocument> emptyPicture(int64_t width, int64_t height) {
    return std::make_unique<PaintDocument>(width, height, 72, std::nullopt);
}

/// One layer of noise.
std::unique_ptr<PaintDocument> noisyPicture(int64_t width, int64_t height, uint64_t seed) {
    auto doc = emptyPicture(width, height);
    doc->activeLayer().load(*noise(width, height, seed));
    doc->commit(QStringLiteral("Noise"));
    return doc;
}

/// Bits of every kind, tiles with none and with all of them.
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

PixelBytes pixelOf(const PaintDocument& doc, int64_t x, int64_t y) {
    return doc.activeLayer().pixel(x, y);
}

} // namespace

class tst_Fill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void everyPixelFollowsTheRules_data() {
        QTest::addColumn<bool>("masked");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<double>("opacity");
        QTest::addColumn<std::string>("instructions");
        for (const std::string& name : instructionSets()) {
            for (double opacity : {1.0, 0.6}) {
                for (int i = 0; i < 8; ++i) {
                    QTest::addRow("%s, %d at %g", name.c_str(), i, opacity)
                        << (i % 2 == 1) << (i / 2 % 2 == 1) << (i / 4 == 1) << opacity << name;
                }
            }
        }
    }
    void everyPixelFollowsTheRules() {
        QFETCH(std::string, instructions);
        useInstructionSet(instructions);
        QFETCH(bool, masked);
        QFETCH(bool, selected);
        QFETCH(bool, locked);
        QFETCH(double, opacity);
        constexpr int64_t w = 700, h = 530;
        const auto doc = noisyPicture(w, h, 3);
        Layer& layer = doc->activeLayer();
        layer.setTile(4, nullptr); // whole, in the middle
        layer.alphaLocked = locked;
        if (selected) doc->selection = patchySelection(w, h, 5);
        const TileMask mask = patchyMask(doc->grid());
        const PaintColor color(0.9, 0.31, 0.07, opacity == 1 ? 1 : 0.8);
        const IRect rect{100, 3, 590, 600};

        const auto wanted = layer.toBuffer();
        const float strength = static_cast<float>(opacity) * static_cast<float>(color.a);
        for (int64_t y = 3; y < h; ++y) {
            for (int64_t x = 100; x < 690; ++x) {
                float c = masked && !mask.covers(x, y) ? 0 : 255;
                if (selected) c = c * doc->selection->value(x, y) / 255;
                if (c > 0)
                    layOnPixel(wanted->row(y) + x * 4, straightFloats(color), c * strength / 255, locked);
            }
        }
        const IRect painted = masked ? paintCoverage(*doc, rect, layer, color, opacity, mask)
                                     : paintCoverage(*doc, rect, layer, color, opacity);
        QCOMPARE(painted, (IRect{100, 3, 590, h - 3}));
        QCOMPARE(doc->takeDirtyTiles().size(), std::size_t{9});
        QCOMPARE(firstDifference(*layer.toBuffer(), *wanted), QString());
    }

    void lockedLayersAndPlacesOutsideAreLeftAlone() {
        const auto doc = noisyPicture(300, 200, 9);
        const uint64_t before = doc->fingerprint();
        QCOMPARE(bucketFill(*doc, 300, 0, kOrange, {}, 1), IRect());
        QCOMPARE(paintCoverage(*doc, {300, 0, 50, 50}, doc->activeLayer(), kOrange, 1), IRect());
        doc->activeLayer().isLocked = true;
        QCOMPARE(bucketFill(*doc, 5, 5, kOrange, {}, 1), IRect());
        QCOMPARE(fillSelection(*doc, kOrange, 1), IRect());
        QVERIFY(doc->takeDirtyTiles().empty());
        doc->activeLayer().isLocked = false;
        QCOMPARE(doc->fingerprint(), before);
    }

    void slotsFilledAllOverShareOneTileUntilPaintedOn() {
        const auto doc = emptyPicture(700, 600); // 3 x 3, the last of each row and column cut
        Layer& layer = doc->activeLayer();
        paintRect(*doc, layer, {0, 0, 700, 600}, {1, 2, 3, 4});
        fillSelection(*doc, kOrange, 1);
        QVERIFY(layer.tile(0) == layer.tile(1) && layer.tile(0) == layer.tile(4));
        QVERIFY(layer.tile(0)->isFrozen() && layer.tile(2) != layer.tile(5));
        // Beyond the canvas edge the layer keeps what it had.
        const uint8_t* edge = layer.tile(2)->pixels();
        QCOMPARE(edge[187 * 4], uint8_t{255});
        QCOMPARE(edge[188 * 4], uint8_t{0});

        doc->commit(QStringLiteral("Fill"));
        QCOMPARE(doc->historyBytes(), int64_t{(1 + 5) * kTileBytes});
        paintRect(*doc, layer, {300, 300, 5, 5}, {9, 9, 9, 9});
        QCOMPARE(pixelOf(*doc, 302, 302), (PixelBytes{9, 9, 9, 9}));
        QCOMPARE(pixelOf(*doc, 46, 46), (PixelBytes{255, 128, 0, 255}));
    }

    void underLineArtTheFillStaysInsideTheLines() {
        const auto doc = emptyPicture(600, 600);
        paintRect(*doc, doc->activeLayer(), {100, 100, 400, 400}, {0, 0, 0, 255});
        paintRect(*doc, doc->activeLayer(), {103, 103, 394, 394}, {0, 0, 0, 0});
        addLayer(*doc);
        const IRect inside{102, 102, 396, 396}; // one pixel under the line
        QCOMPARE(bucketFill(*doc, 300, 300, kOrange, {.sampleAllLayers = true}, 1), inside);
        QCOMPARE(*doc->activeLayer().contentBounds(), inside);
        doc->revertToLastCommit();
        addLayer(*doc);
        QCOMPARE(bucketFill(*doc, 300, 300, kOrange, {}, 1), doc->grid().bounds());
    }

    void theSelectionLimitsThePaintAndNotTheSearch() {
        // A corridor that leaves the selected columns and comes back to them.
        const auto doc = emptyPicture(600, 300);
        paintRect(*doc, doc->activeLayer(), {0, 150, 500, 1}, {0, 0, 0, 255});
        std::vector<uint8_t> mask(600 * 300);
        for (std::size_t i = 0; i < mask.size(); ++i) mask[i] = i % 600 < 100 ? 51 : 0;
        doc->selection = Selection::fromMask(mask, 600, 300);
        QCOMPARE(bucketFill(*doc, 10, 10, kOrange, {.expand = 0}, 1), doc->grid().bounds());
        QCOMPARE(pixelOf(*doc, 99, 299), (PixelBytes{51, 26, 0, 51}));
        QCOMPARE(pixelOf(*doc, 100, 299), (PixelBytes{0, 0, 0, 0}));
        QCOMPARE(pixelOf(*doc, 50, 150), (PixelBytes{0, 0, 0, 255}));
        QVERIFY(!doc->activeLayer().tile(2));
    }

    void theLargestCanvasCostsNoMoreThanWhatIsPainted() {
        const auto doc = emptyPicture(30000, 30000);
        QCOMPARE(bucketFill(*doc, 15000, 15000, kOrange, {}, 1), doc->grid().bounds());
        QCOMPARE(pixelOf(*doc, 29999, 29999), (PixelBytes{255, 128, 0, 255}));
        doc->commit(QStringLiteral("Bucket Fill"));
        QCOMPARE(doc->historyBytes(), int64_t{(1 + 117 + 118) * kTileBytes}); // one tile, and the cut ones
        paintRect(*doc, doc->activeLayer(), {14000, 14000, 1000, 1000}, {0, 0, 0, 255});
        QCOMPARE(bucketFill(*doc, 14500, 14500, PaintColor::white(), {.expand = 0}, 1),
                 (IRect{14000, 14000, 1000, 1000}));
    }
};

QIRN_TEST(tst_Fill)
#include "tst_Fill.moc"

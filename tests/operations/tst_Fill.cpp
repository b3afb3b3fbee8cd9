#include "PaintReference.h"
#include "core/SeededRandom.h"
#include "operations/CoveragePainter.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"
#include "platform/InstructionSets.h"
#include "support/Pictures.h"
#include "support/Stops.h"
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

    void optionsComeBackFromTheirRecord() {
        const FillOptions options{.tolerance = 7, .contiguous = false, .sampleAllLayers = true, .expand = 3};
        const std::string record = jsonBytes(options.toJson());
        QCOMPARE(record,
                 std::string(R"({"tolerance":7,"contiguous":false,"sampleAllLayers":true,"expand":3})"));
        QCOMPARE(FillOptions::fromJson(Json::parse(record)), options);
        Json broken = Json::parse(record);
        broken["expand"] = "3";
        QVERIFY_THROWS_EXCEPTION(JsonTypeError, FillOptions::fromJson(broken));
        broken.erase("expand");
        QVERIFY_THROWS_EXCEPTION(JsonTypeError, FillOptions::fromJson(broken));
    }

    void valuesAreThoseOfTheRules_data() {
        QTest::addColumn<PixelBytes>("before");
        QTest::addColumn<double>("alpha");
        QTest::addColumn<double>("opacity");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<PixelBytes>("after");
        constexpr PixelBytes none{0, 0, 0, 0}, white{255, 255, 255, 255}, half{128, 0, 0, 128};
        QTest::newRow("opaque") << half << 1.0 << 1.0 << false << PixelBytes{255, 128, 0, 255};
        QTest::newRow("half over nothing") << none << 1.0 << 0.5 << false << PixelBytes{128, 64, 0, 128};
        QTest::newRow("half a half over nothing") << none << 0.5 << 0.5 << false << PixelBytes{64, 32, 0, 64};
        QTest::newRow("half over white") << white << 1.0 << 0.5 << false << PixelBytes{255, 191, 128, 255};
        // 127.5 of the colour and half of 127.
        QTest::newRow("half over half")
            << PixelBytes{127, 0, 0, 127} << 1.0 << 0.5 << false << PixelBytes{191, 64, 0, 191};
        QTest::newRow("opacity 0") << half << 1.0 << 0.0 << false << half;
        QTest::newRow("lock, opaque") << half << 1.0 << 1.0 << true << PixelBytes{128, 64, 0, 128};
        QTest::newRow("lock, half") << white << 1.0 << 0.5 << true << PixelBytes{255, 191, 128, 255};
        QTest::newRow("lock, nothing there") << none << 1.0 << 1.0 << true << none;
        QTest::newRow("lock, colour without alpha")
            << PixelBytes{9, 8, 7, 0} << 1.0 << 1.0 << true << PixelBytes{9, 8, 7, 0};
    }
    void valuesAreThoseOfTheRules() {
        QFETCH(PixelBytes, before);
        QFETCH(double, alpha);
        QFETCH(double, opacity);
        QFETCH(bool, locked);
        const auto doc = emptyPicture(1, 1);
        paintRect(*doc, doc->activeLayer(), {0, 0, 1, 1}, before);
        doc->activeLayer().alphaLocked = locked;
        QCOMPARE(fillSelection(*doc, {1, 0.5, 0, alpha}, opacity), (IRect{0, 0, 1, 1}));
        QFETCH(PixelBytes, after);
        QCOMPARE(text(pixelOf(*doc, 0, 0)), text(after));
    }

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

    void noCoverageLeavesEveryByteAsItIs() {
        const auto doc = emptyPicture(256, 1);
        for (int64_t x = 0; x < 256; ++x) {
            const auto byte = static_cast<uint8_t>(x);
            paintRect(*doc, doc->activeLayer(), {x, 0, 1, 1}, {byte, 0, byte, byte});
        }
        const auto before = doc->activeLayer().toBuffer();
        TileMask mask(doc->grid());
        TileBits one{};
        one[1].set(0); // beside the canvas
        mask.setBits(0, one);
        QCOMPARE(mask.bounds(), IRect());
        for (bool locked : {false, true}) {
            doc->activeLayer().alphaLocked = locked;
            paintCoverage(*doc, doc->grid().bounds(), doc->activeLayer(), kOrange, 1, mask);
            QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *before), QString());
        }
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

    void theCallerCommits() {
        const auto doc = noisyPicture(300, 200, 9);
        const uint64_t before = doc->fingerprint();
        const int64_t depth = doc->undoDepth();
        fillSelection(*doc, kOrange, 1);
        QCOMPARE(doc->undoDepth(), depth);
        QVERIFY(doc->fingerprint() != before);
        doc->commit(QStringLiteral("Fill"));
        doc->undo();
        QCOMPARE(doc->fingerprint(), before);
    }

    void anEvenlySoftSelectionIsSoft() {
        const auto doc = emptyPicture(600, 300);
        doc->selection = Selection::fromMask(std::vector<uint8_t>(600 * 300, 51), 600, 300);
        fillSelection(*doc, kOrange, 1);
        for (int64_t x : {0, 300, 599}) QCOMPARE(pixelOf(*doc, x, 255), (PixelBytes{51, 26, 0, 51}));
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

    void tilesThatAreNotPaintedStayAsTheyAre() {
        PaintDocument doc(1000, 1000, 72, PaintColor::white());
        doc.setActiveIndex(0);
        const Layer& paper = doc.activeLayer();
        paintRect(doc, doc.activeLayer(), {300, 300, 10, 10}, {0, 0, 0, 255});
        bucketFill(doc, 305, 305, kOrange, {.expand = 0}, 1);
        QCOMPARE(pixelOf(doc, 300, 300), (PixelBytes{255, 128, 0, 255}));
        QVERIFY(paper.tile(0) == paper.tile(15) && paper.tile(0) != paper.tile(5));

        addLayer(doc);
        fillSelection(doc, kOrange, 0);
        doc.activeLayer().alphaLocked = true;
        fillSelection(doc, kOrange, 1);
        QVERIFY(doc.activeLayer().tiles().holdsNothing());
    }

    void aStepInColourStopsTheBucketOrNot() {
        for (int64_t tolerance : {10, 19, 20, 30}) {
            const auto doc = emptyPicture(520, 20);
            paintRect(*doc, doc->activeLayer(), {0, 0, 256, 20}, {100, 100, 100, 255});
            paintRect(*doc, doc->activeLayer(), {256, 0, 264, 20}, {100, 120, 100, 255});
            const IRect filled = bucketFill(*doc, 3, 3, kOrange, {.tolerance = tolerance, .expand = 0}, 1);
            QCOMPARE(filled.w, tolerance < 20 ? 256 : 520);
            QCOMPARE(pixelOf(*doc, 519, 19)[1], uint8_t(tolerance < 20 ? 120 : 128));
        }
    }

    void aRingHoldsAContiguousFill_data() {
        QTest::addColumn<bool>("contiguous");
        QTest::newRow("contiguous") << true;
        QTest::newRow("everywhere") << false;
    }
    void aRingHoldsAContiguousFill() {
        QFETCH(bool, contiguous);
        const auto doc = emptyPicture(600, 600);
        Layer& layer = doc->activeLayer();
        paintRect(*doc, layer, {0, 0, 600, 600}, {200, 200, 200, 255});
        paintRect(*doc, layer, {100, 100, 400, 400}, {0, 0, 0, 255});
        paintRect(*doc, layer, {101, 101, 398, 398}, {200, 200, 200, 255});
        const IRect filled =
            bucketFill(*doc, 300, 300, kOrange, {.tolerance = 0, .contiguous = contiguous, .expand = 0}, 1);
        QCOMPARE(filled, contiguous ? (IRect{101, 101, 398, 398}) : doc->grid().bounds());
        const PixelBytes orange{255, 128, 0, 255}, grey{200, 200, 200, 255};
        QCOMPARE(pixelOf(*doc, 498, 255), orange);
        QCOMPARE(pixelOf(*doc, 499, 255), (PixelBytes{0, 0, 0, 255}));
        QCOMPARE(pixelOf(*doc, 50, 50), contiguous ? grey : orange);
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

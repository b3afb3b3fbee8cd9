#include "compositing/CompositeInputs.h"
#include "compositing/Reference.h"
#include "compositing/ScreenTiles.h"
#include "core/SeededRandom.h"
#include "operations/LayerOperations.h"
#include "platform/InstructionSets.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

const PixelBytes kRed{255, 0, 0, 255}, kBlack{0, 0, 0, 255};

/// One input of noise for a picture of one tile; `absent` leaves the slot empty.
CompositeInput noiseInput(SeededRandom& random, bool absent) {
    TileArray tiles(1);
    if (!absent) {
        auto tile = std::make_shared<Tile>();
        std::memcpy(tile->writablePixels(), noise(256, 256, random.next())->data(), kTileBytes);
        // Blank and opaque bands, which take roads of their own, and colour without coverage, as a damaged file holds.
        for (int y = 0; y < kTileSize; y += 32) {
            uint8_t* band = tile->writablePixels() + y * kTileRowBytes;
            const uint64_t kind = random.next() % 5;
            if (kind == 0) std::memset(band, 0, 32 * kTileRowBytes);
            for (int i = 3; kind == 1 && i < 32 * kTileRowBytes; i += 4) band[i] = 255;
            for (int i = 3; kind == 2 && i < 32 * kTileRowBytes; i += 4) band[i] = 0;
        }
        tiles.set(0, std::move(tile));
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

/// White paper, a black square from 10 to 60, and above it a red sheet that is clipped to the square.
std::unique_ptr<PaintDocument> clippedPicture() {
    auto doc = std::make_unique<PaintDocument>(100, 100, 72, PaintColor::white());
    paintRect(*doc, doc->activeLayer(), {10, 10, 50, 50}, kBlack);
    doc->fillLayer(*addLayer(*doc, "Red"), PaintColor(1, 0, 0));
    doc->activeLayer().isClipping = true;
    return doc;
}

QString pixelAt(const PaintDocument& doc, int64_t x, int64_t y) {
    return text(compositePixel(doc, x, y));
}

} // namespace

class tst_Compositor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void randomStacksAreThoseOfTheReference_data() {
        QTest::addColumn<QString>("instructions");
        for (const std::string& name : instructionSets()) QTest::addRow("%s", name.c_str()) << name.c_str();
    }
    void randomStacksAreThoseOfTheReference() {
        QFETCH(QString, instructions);
        useInstructionSet(instructions.toStdString());
        for (uint64_t seed = 1; seed <= 60; ++seed) {
            const QString difference = tileDifference(randomStack(seed));
            QVERIFY2(difference.isEmpty(), qPrintable(QString("seed %1, ").arg(seed) + difference));
        }
    }

    void theScreenShowsTheRoundedPixelsOverGrey_data() { randomStacksAreThoseOfTheReference_data(); }
    void theScreenShowsTheRoundedPixelsOverGrey() {
        QFETCH(QString, instructions);
        useInstructionSet(instructions.toStdString());
        const TileGrid grid(250, 256); // cut at the right
        SeededRandom random(4);
        for (uint64_t seed = 1; seed <= 12; ++seed) {
            const std::vector<CompositeInput> stack = randomStack(seed);
            const std::vector<uint8_t> pixels = referenceTile(0, stack);
            IRect part =
                IRect{static_cast<int64_t>(random.next() % 250), static_cast<int64_t>(random.next() % 256),
                      static_cast<int64_t>(1 + random.next() % 250),
                      static_cast<int64_t>(1 + random.next() % 256)}
                    .intersection(grid.bounds());
            // Whole tiles in memory that begins evenly have a road of their own.
            if (seed % 3 != 0) part = grid.bounds();
            const TileMemory::Block even = TileMemory::take();
            std::vector<uint32_t> uneven(kTilePixels + 1);
            auto* const screen = seed % 3 == 1 ? reinterpret_cast<uint32_t*>(even.get()) : uneven.data() + 1;
            drawForScreen({0, part}, stack, grid, {7.5}, reinterpret_cast<uint8_t*>(screen), kTileRowBytes);
            for (int64_t y = part.y; y < part.maxY(); ++y) {
                for (int64_t x = part.x; x < part.maxX(); ++x) {
                    const uint8_t* p = pixels.data() + (y * kTileSize + x) * 4;
                    const bool dark = (static_cast<int>(static_cast<double>(x) / 7.5) +
                                       static_cast<int>(static_cast<double>(y) / 7.5)) %
                                          2 ==
                                      0;
                    const int behind = ((dark ? 179 : 219) * (255 - p[3]) + 127) / 255;
                    QCOMPARE(screen[y * kTileSize + x], qRgb(p[0] + behind, p[1] + behind, p[2] + behind));
                }
            }
        }
    }

    /// Over paper the loops leave out what they would multiply by 0 and 1: also where colours have grown beyond all
    /// numbers.
    void malformedPixelsOverPaperAreThoseOfTheReference() {
        SeededRandom random(6);
        CompositeInput paper = noiseInput(random, false), malformed = paper;
        for (CompositeInput* input : {&paper, &malformed}) {
            auto tile = std::make_shared<Tile>();
            for (int i = 0; i < kTileBytes; ++i) {
                const auto byte = static_cast<uint8_t>(random.next());
                tile->writablePixels()[i] = i % 4 != 3 ? byte : input == &paper ? 255 : byte % 3;
            }
            input->tiles.set(0, std::move(tile));
            input->tint.reset();
        }
        std::vector<CompositeInput> stack{paper};
        for (int i = 0; i < 3 * kBlendModeCount; ++i) {
            stack.push_back(malformed);
            stack.back().mode = BlendMode(static_cast<int>(random.next() % kBlendModeCount));
        }
        QCOMPARE(tileDifference(stack), QString());
        for (std::size_t i = 1; i < stack.size(); ++i) stack[i].mode = BlendMode::colorBurn;
        QCOMPARE(tileDifference(stack), QString());
    }

    void aClippedLayerShowsOnlyInsideTheLayerBelow() {
        const QString red = text(kRed), white = QStringLiteral("255,255,255,255");
        const auto doc = clippedPicture();
        QCOMPARE(pixelAt(*doc, 30, 30), red);
        QCOMPARE(pixelAt(*doc, 9, 30), white);
        doc->layer(1).isVisible = false; // a hidden base hides its group
        QCOMPARE(pixelAt(*doc, 30, 30), white);
        doc->layer(1).isVisible = true;
        doc->layer(1).opacity = 0.5; // acts on the whole group
        QCOMPARE(pixelAt(*doc, 30, 30), QStringLiteral("255,128,128,255"));
        doc->layer(1).opacity = 1;

        // A hidden clipped layer between is passed over: the one above still clips to the same base.
        Layer& hidden = *addLayer(*doc, "Hidden", 2);
        doc->fillLayer(hidden, PaintColor(0, 1, 0));
        hidden.isClipping = true;
        hidden.isVisible = false;
        QCOMPARE(pixelAt(*doc, 30, 30), red);
        QCOMPARE(pixelAt(*doc, 9, 30), white);
        // A clipped layer's mode acts against its base, not against what lies below.
        doc->layer(3).blendMode = BlendMode::multiply;
        QCOMPARE(pixelAt(*doc, 30, 30), text(kBlack));
    }

    void overlayOnPaperHasItsKnownFingerprint() {
        PaintDocument doc(300, 300, 72, PaintColor::fromBytes(200, 100, 50));
        doc.fillLayer(doc.activeLayer(), PaintColor(60 / 255.0, 150 / 255.0, 240 / 255.0, 0.5));
        doc.activeLayer().blendMode = BlendMode::overlay;
        QCOMPARE(flattened(doc)->fingerprint(), uint64_t{0x950C6CF1B09D2D45});
        QCOMPARE(doc.fingerprint(), uint64_t{0x1D45FF6851CB4346});
        doc.activeLayer().isVisible = false;
        QCOMPARE(text(flattened(doc)->pixel(150, 150)), QStringLiteral("200,100,50,255"));
        QCOMPARE(text(flattened(doc)->pixel(299, 299)), QStringLiteral("200,100,50,255"));
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

    void tileImagesAreThePictureCutAtTheCanvas() {
        PaintDocument doc(600, 300, 72, {});
        doc.activeLayer().load(*noise(600, 300, 6));
        doc.activeLayer().setTile(1, nullptr);
        const auto picture = flattened(doc);
        const std::vector<int64_t> wanted{5, 1, 0};
        const auto images = displayImages(doc, wanted);
        QCOMPARE(images.size(), std::size_t{2}); // nothing was painted in tile 1
        for (const auto& [index, image] : images) {
            const IRect part = doc.grid().rectOf(index);
            QCOMPARE(image.size(), QSize(static_cast<int>(part.w), static_cast<int>(part.h)));
            for (int y = 0; y < part.h; ++y) {
                QVERIFY(std::memcmp(image.constScanLine(y), picture->row(part.y + y) + part.x * 4,
                                    static_cast<std::size_t>(part.w) * 4) == 0);
            }
        }
        QVERIFY(displayImages(doc, {}).empty());
    }
};

QIRN_TEST(tst_Compositor)
#include "tst_Compositor.moc"

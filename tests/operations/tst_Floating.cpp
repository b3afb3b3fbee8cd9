#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "core/TileMemory.h"
#include "operations/Floating.h"
#include "operations/Selection.h"
#include "platform/Resampler.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int64_t kWidth = 530, kHeight = 300; // 3 x 2 tiles

std::unique_ptr<PaintDocument> documentOf(const RGBABuffer& pixels) {
    auto doc = std::make_unique<PaintDocument>(pixels.width(), pixels.height(), 72, std::nullopt);
    doc->activeLayer().load(pixels);
    doc->commit("Paint");
    doc->takeDirtyTiles();
    return doc;
}

/// A soft mask inside a rectangle: 0, 255 and everything between occur.
SelectionRef softSelection(int64_t width, int64_t height, const IRect& rect, uint64_t seed) {
    SeededRandom random(seed);
    std::vector<uint8_t> mask(static_cast<std::size_t>(width * height));
    for (int64_t y = rect.y; y < rect.maxY(); ++y) {
        for (int64_t x = rect.x; x < rect.maxX(); ++x) {
            const uint64_t draw = random.next();
            mask[static_cast<std::size_t>(y * width + x)] = draw % 4 == 0   ? 0
                                                            : draw % 4 == 1 ? 255
                                                                            : static_cast<uint8_t>(draw >> 8);
        }
    }
    return Selection::fromMask(mask, width, height);
}

int tileCount(const Layer& layer) {
    int count = 0;
    layer.tiles().forEachTile([&](int64_t, const Tile&) { ++count; });
    return count;
}

/// What a stamp makes of one pixel, in the order of operations that files and machines agree on.
PixelBytes stamped(const PixelBytes& old, const PixelBytes& source, float m, bool alphaLocked) {
    if (source[3] == 0 || m == 0 || (alphaLocked && old[3] == 0)) return old;
    const auto byte = [](float v) {
        return static_cast<uint8_t>(std::clamp(v * 255.0f + 0.5f, 0.0f, 255.0f));
    };
    const float s = m * source[3] / 255.0f, d = old[3] / 255.0f;
    PixelBytes out = old;
    for (std::size_t c = 0; c < 4; ++c) {
        const float v = old[c] / 255.0f;
        if (!alphaLocked) out[c] = byte(m * source[c] / 255.0f + (1 - s) * v);
        if (alphaLocked && c < 3) out[c] = byte(v + s * (d * source[c] / source[3] - v));
    }
    return out;
}

} // namespace

class tst_Floating : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stampsFollowTheArithmetic_data() {
        QTest::addColumn<double>("opacity");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("alphaLocked");
        for (double opacity : {1.0, 0.37, 0.0}) {
            for (bool selected : {false, true}) {
                for (bool locked : {false, true})
                    QTest::addRow("%g%s%s", opacity, selected ? " selected" : "", locked ? " locked" : "")
                        << opacity << selected << locked;
            }
        }
    }
    void stampsFollowTheArithmetic() {
        QFETCH(double, opacity);
        QFETCH(bool, selected);
        QFETCH(bool, alphaLocked);
        const auto before = noise(kWidth, kHeight, 1), buffer = noise(300, 280, 2);
        const auto doc = documentOf(*before);
        doc->selection = softSelection(kWidth, kHeight, {100, 0, 300, 290}, 3);
        doc->activeLayer().alphaLocked = alphaLocked;
        const IRect rect = stamp(*doc, *buffer, 200, -10, doc->activeLayer(), opacity,
                                 selected ? UseSelection::yes : UseSelection::no);
        QCOMPARE(rect, (IRect{200, 0, 300, 270}));
        QCOMPARE(doc->takeDirtyTiles(), (std::vector<int64_t>{0, 1, 3, 4}));
        for (int64_t y = 0; y < kHeight; ++y) {
            for (int64_t x = 0; x < kWidth; ++x) {
                float m = static_cast<float>(opacity);
                if (selected) m = doc->selection->value(x, y) / 255.0f * m;
                QCOMPARE(text(doc->activeLayer().pixel(x, y)),
                         text(stamped(before->pixel(x, y), buffer->pixel(x - 200, y + 10), m, alphaLocked)));
            }
        }
        doc->undo(); // to the empty picture, and forth
        doc->redo();
        QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *before), QString());
    }

    void tilesAreThoseOfOneBuffer_data() {
        QTest::addColumn<SelectionRef>("selection");
        QTest::addColumn<QTransform>("transform"); // besides the way to where the pixels were
        QTest::addColumn<bool>("alphaLocked");
        QPainterPath rectangle;
        rectangle.addRect(100.5, 3, 420, 280.25); // the second tile of the first row within
        const auto hard =
            Selection::make(rectangle, SelectionOp::replace, {}, kWidth, kHeight, Antialias::yes);
        const std::pair<const char*, SelectionRef> selections[] = {
            {"all", {}},
            {"soft", softSelection(kWidth, kHeight, {200, 100, 300, 190}, 6)},
            {"whole tiles", hard}};
        const std::pair<const char*, QTransform> transforms[] = {
            {"back", QTransform()},
            {"moved", QTransform::fromTranslate(100, -50)},
            {"by tiles", QTransform::fromTranslate(256, 0)},
            {"out", QTransform::fromTranslate(-470, 290)},
            {"mirrored", QTransform(-1, 0, 0, 1, 400, 7)},
            {"turned", QTransform(0, 1, -1, 0, 310, -100)},
            {"scaled", QTransform::fromScale(0.7, 1.2)}};
        for (const auto& [how, transform] : transforms) {
            for (const auto& [what, selection] : selections) {
                for (bool locked : {false, true})
                    QTest::addRow("%s %s%s", what, how, locked ? " locked" : "")
                        << selection << transform << locked;
            }
        }
    }
    void tilesAreThoseOfOneBuffer() {
        QFETCH(SelectionRef, selection);
        QFETCH(QTransform, transform);
        QFETCH(bool, alphaLocked);
        const auto before = noise(kWidth, kHeight, 5);
        const auto doc = documentOf(*before);
        Layer& layer = doc->activeLayer();
        doc->selection = selection;
        const auto floating = liftFloating(*doc);
        const IRect origin = floating->origin;
        if (selection) QCOMPARE(origin, selection->bounds());
        RGBABuffer box(origin.w, origin.h), rest(kWidth, kHeight);
        for (int64_t y = 0; y < kHeight; ++y) {
            for (int64_t x = 0; x < kWidth; ++x) {
                const int c = selection ? selection->value(x, y) : 255;
                for (std::size_t i = 0; i < 4; ++i) {
                    const int value = before->pixel(x, y)[i], taken = (c * value + 127) / 255;
                    if (origin.contains(x, y))
                        box.row(y - origin.y)[(x - origin.x) * 4 + static_cast<int>(i)] =
                            static_cast<uint8_t>(taken);
                    rest.row(y)[x * 4 + static_cast<int>(i)] = static_cast<uint8_t>(value - taken);
                }
            }
        }
        QCOMPARE(firstDifference(*floating->picture(origin), box), QString());
        QCOMPARE(firstDifference(*layer.toBuffer(), rest), QString());
        QVERIFY(floating->hasAlpha());

        layer.alphaLocked = alphaLocked;
        doc->selection = softSelection(kWidth, kHeight, {0, 0, 2, 2}, 7); // has no say in placing
        const QTransform toCanvas =
            QTransform::fromTranslate(static_cast<double>(origin.x), static_cast<double>(origin.y)) *
            transform;
        doc->takeDirtyTiles();
        const IRect rect = placeFloating(*doc, *floating, toCanvas);
        QCOMPARE(doc->takeDirtyTiles(), doc->grid().tilesIn(rect));
        RGBABuffer drawn(kWidth, kHeight);
        Resampler({box.data(), box.width(), box.height(), box.width() * 4}, toCanvas)
            .draw(0, 0, kWidth, kHeight, drawn.data());
        for (int64_t y = 0; y < kHeight; ++y) {
            for (int64_t x = 0; x < kWidth; ++x) {
                if (!rect.contains(x, y)) continue;
                const PixelBytes mixed = stamped(rest.pixel(x, y), drawn.pixel(x, y), 1, alphaLocked);
                std::copy(mixed.begin(), mixed.end(), rest.row(y) + x * 4);
            }
        }
        QCOMPARE(firstDifference(*layer.toBuffer(), rest), QString());
        doc->commit("Transform");
        doc->undo();
        QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *before), QString());
    }

    void liftedTilesAreTheLayersOwn() {
        PaintDocument doc(2048, 2048, 72, {});
        for (int64_t index = 0; index < 64; ++index)
            doc.activeLayer().writableTile(index).writablePixels()[3] = 255;
        doc.activeLayer().writableTile(63).writablePixels()[kTileBytes - 1] = 255;
        doc.commit("Paint");
        for (const SelectionRef& selection : {SelectionRef(), Selection::all(2048, 2048)}) {
            doc.selection = selection;
            const int64_t before = TileMemory::usedBytes();
            const auto floating = liftFloating(doc);
            QVERIFY(doc.activeLayer().isEmpty());
            QCOMPARE(TileMemory::usedBytes(), before);
            placeFloating(doc, *floating, QTransform::fromTranslate(256, -512));
            QCOMPARE(TileMemory::usedBytes(), before);
            doc.revertToLastCommit();
            doc.activeLayer().removeAllTiles();
            placeFloating(doc, *floating, QTransform::fromTranslate(3, 5));
            QVERIFY(TileMemory::usedBytes() - before <= 64 * kTileBytes);
            doc.revertToLastCommit();
        }
    }

    void aLiftWithoutASelectionTakesAllAndNoMore() {
        PaintDocument doc(kWidth, kHeight, 72, {});
        QVERIFY(!liftFloating(doc)); // nothing there
        doc.activeLayer().writableTile(0);
        QVERIFY(!liftFloating(doc));
        paintRect(doc, doc.activeLayer(), {250, 200, 20, 90}, {1, 2, 3, 4});
        doc.activeLayer().isLocked = true;
        const uint64_t before = doc.fingerprint();
        QVERIFY(!liftFloating(doc));
        QCOMPARE(doc.fingerprint(), before);
        doc.activeLayer().isLocked = false;
        doc.takeDirtyTiles();
        const auto floating = liftFloating(doc);
        QCOMPARE(floating->origin, (IRect{250, 200, 20, 90}));
        QCOMPARE(floating->pixels->pixel(269, 289), (PixelBytes{1, 2, 3, 4}));
        QVERIFY(doc.activeLayer().isEmpty());
        QCOMPARE(doc.takeDirtyTiles(), (std::vector<int64_t>{0, 1, 3, 4}));
    }

    void aLiftOfNothingUnderASelectionMakesNoTile() {
        PaintDocument doc(kWidth, kHeight, 72, {});
        doc.selection = softSelection(kWidth, kHeight, {240, 10, 30, 20}, 1);
        const auto floating = liftFloating(doc);
        QVERIFY(floating);
        QCOMPARE(floating->origin, doc.selection->bounds());
        QCOMPARE(tileCount(doc.activeLayer()), 0);
        // Tiles inside the box of which no pixel is selected stay shared with the history.
        doc.activeLayer().load(*noise(kWidth, kHeight, 2));
        doc.commit("Paint");
        std::vector<uint8_t> corners(static_cast<std::size_t>(kWidth * kHeight));
        corners.front() = corners.back() = 200;
        doc.selection = Selection::fromMask(corners, kWidth, kHeight);
        liftFloating(doc);
        int shared = 0;
        for (int64_t i = 0; i < 6; ++i)
            shared += doc.activeLayer().tile(i) == doc.history().back().state.layers[0].tiles.at(i);
        QCOMPARE(shared, 4);
    }

    void pixelsWithoutALayerOrOffTheCanvasAreLost() {
        const auto doc = documentOf(*noise(kWidth, kHeight, 8));
        const auto floating = liftFloating(*doc);
        doc->takeDirtyTiles();
        for (const QTransform& t :
             {QTransform::fromTranslate(kWidth, 0), QTransform::fromTranslate(0, -kHeight - 7.5),
              QTransform::fromTranslate(1e18, 0), QTransform::fromScale(0, 1),
              QTransform(std::nan(""), 0, 0, 1, 0, 0), QTransform::fromScale(1e300, 1e300)}) {
            QCOMPARE(placeFloating(*doc, *floating, t), IRect{});
        }
        doc->undo();
        const Floating orphan{floating->pixels, floating->origin, QUuid::createUuid()};
        QCOMPARE(placeFloating(*doc, orphan, QTransform()), IRect{});
        QVERIFY(doc->activeLayer().isEmpty());
    }

    void copiesAreCutLikeLifts() {
        auto doc = randomDocument(kWidth, kHeight, 4, 21);
        doc->activeLayer().isLocked = true; // no hindrance to a copy
        for (const SelectionRef& selection :
             {SelectionRef(), softSelection(kWidth, kHeight, {240, 3, 100, 290}, 2)}) {
            for (Merged merged : {Merged::no, Merged::yes}) {
                doc->selection = selection;
                const auto source = merged == Merged::yes ? flattened(*doc) : doc->activeLayer().toBuffer();
                const uint64_t before = doc->fingerprint();
                const auto copy = copyPixels(*doc, merged);
                QCOMPARE(doc->fingerprint(), before);
                QCOMPARE(copy->rect, selection ? selection->bounds() : IRect({0, 0, kWidth, kHeight}));
                for (int64_t y = 0; y < copy->rect.h; ++y) {
                    for (int64_t x = 0; x < copy->rect.w; ++x) {
                        PixelBytes wanted = source->pixel(copy->rect.x + x, copy->rect.y + y);
                        const int c = selection ? selection->value(copy->rect.x + x, copy->rect.y + y) : 255;
                        for (uint8_t& byte : wanted) byte = static_cast<uint8_t>((c * byte + 127) / 255);
                        QCOMPARE(copy->buffer->pixel(x, y), wanted);
                    }
                }
            }
        }
    }

    void thinAndHugeCanvasesCostWhatTheyHold() {
        for (const auto& [w, h] : {std::pair<int64_t, int64_t>{30000, 1}, {1, 1}, {30000, 30000}}) {
            PaintDocument doc(w, h, 72, {});
            paintRect(doc, doc.activeLayer(), {w - 1, h - 1, 1, 1}, {5, 6, 7, 8});
            const auto floating = liftFloating(doc);
            QCOMPARE(floating->origin, (IRect{w - 1, h - 1, 1, 1}));
            QCOMPARE(placeFloating(doc, *floating, QTransform::fromTranslate(0, 0)), (IRect{0, 0, 1, 1}));
            QCOMPARE(doc.activeLayer().pixel(0, 0), (PixelBytes{5, 6, 7, 8}));
            QCOMPARE(tileCount(doc.activeLayer()), 1);
            QCOMPARE(copyPixels(doc, Merged::no)->buffer->byteCount(), int64_t{4});
        }
    }
};

QIRN_TEST(tst_Floating)
#include "tst_Floating.moc"

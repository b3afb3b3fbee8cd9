#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "operations/Floating.h"
#include "platform/BlockPool.h"
#include "platform/resample/Resampler.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int64_t kWidth = 530, kHeight = 300; // 3 x 2 tiles

/// A soft mask inside a rectangle: 0, 255 and everything between occur.
SelectionRef softSelection(const IRect& rect, uint64_t seed) {
    SeededRandom random(seed);
    return selectionOf(kWidth, kHeight, [&](int64_t x, int64_t y) {
        const uint64_t draw = random.next();
        return !rect.contains(x, y) || draw % 4 == 0 ? 0
               : draw % 4 == 1                       ? 255
                                                     : static_cast<uint8_t>(draw >> 8);
    });
}

/// A pixel as far as it is selected.
PixelBytes taken(const PixelBytes& pixel, const SelectionRef& selection, int64_t x, int64_t y) {
    PixelBytes part = pixel;
    for (uint8_t& byte : part)
        byte = static_cast<uint8_t>(((selection ? selection->value(x, y) : 255) * byte + 127) / 255);
    return part;
}

/// One pixel stamped on another, in the engine's order of operations.
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
    void stampsFollowTheArithmetic() {
        const auto before = noise(kWidth, kHeight, 1), buffer = noise(300, 280, 2);
        for (int i = 0; i < 12; ++i) {
            const double opacity = i < 4 ? 1 : i < 8 ? 0.37 : 0;
            const bool selected = i & 1, alphaLocked = i & 2;
            const auto doc = documentOf(*before);
            doc->selection = softSelection({100, 0, 300, 290}, 3);
            doc->activeLayer().alphaLocked = alphaLocked;
            const IRect rect = stamp(*doc, *buffer, 200, -10, doc->activeLayer(), opacity,
                                     selected ? UseSelection::yes : UseSelection::no);
            QCOMPARE(rect, (IRect{200, 0, 300, 270}));
            QCOMPARE(doc->takeDirtyTiles(), (std::vector<int64_t>{0, 1, 3, 4}));
            const auto wanted = pictureOf(kWidth, kHeight, [&](int64_t x, int64_t y) {
                float m = static_cast<float>(opacity);
                if (selected) m = doc->selection->value(x, y) / 255.0f * m;
                return stamped(before->pixel(x, y), buffer->pixel(x - 200, y + 10), m, alphaLocked);
            });
            QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *wanted), QString());
            doc->revertToLastCommit(); // what history holds was not painted on
            QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *before), QString());
        }
    }

    void tilesAreThoseOfOneBuffer_data() {
        QTest::addColumn<SelectionRef>("selection");
        QTest::addColumn<QTransform>("transform"); // besides the translation to the old place
        const std::pair<const char*, SelectionRef> selections[] = {
            {"all", {}},
            {"soft", softSelection({200, 100, 300, 190}, 6)},
            {"whole tiles", // the second of the first row
             Selection::make(rectangle(100.5, 3, 420, 280.25), SelectionOp::replace, {}, kWidth, kHeight,
                             Antialias::yes)}};
        const std::pair<const char*, QTransform> transforms[] = {
            {"back", QTransform()},
            {"moved", QTransform::fromTranslate(100, -50)},
            {"by tiles", QTransform::fromTranslate(256, 0)},
            {"out", QTransform::fromTranslate(-470, 290)},
            {"mirrored", QTransform(-1, 0, 0, 1, 400, 7)},
            {"turned", QTransform(0, 1, -1, 0, 310, -100)},
            {"scaled", QTransform::fromScale(0.7, 1.2)}};
        for (const auto& [how, transform] : transforms) {
            for (const auto& [what, selection] : selections)
                QTest::addRow("%s %s", what, how) << selection << transform;
        }
    }
    void tilesAreThoseOfOneBuffer() {
        QFETCH(SelectionRef, selection);
        QFETCH(QTransform, transform);
        const auto before = noise(kWidth, kHeight, 5);
        for (bool alphaLocked : {false, true}) {
            const auto doc = documentOf(*before);
            Layer& layer = doc->activeLayer();
            doc->selection = selection;
            const auto floating = liftFloating(*doc);
            const IRect origin = floating->origin;
            if (selection) QCOMPARE(origin, selection->bounds());
            const auto box = pictureOf(origin.w, origin.h, [&](int64_t x, int64_t y) {
                return taken(before->pixel(x + origin.x, y + origin.y), selection, x + origin.x,
                             y + origin.y);
            });
            const auto rest = pictureOf(kWidth, kHeight, [&](int64_t x, int64_t y) {
                PixelBytes left = before->pixel(x, y);
                const PixelBytes gone = taken(left, selection, x, y);
                for (std::size_t c = 0; c < 4; ++c) left[c] = static_cast<uint8_t>(left[c] - gone[c]);
                return left;
            });
            QCOMPARE(firstDifference(*floating->picture(origin), *box), QString());
            QCOMPARE(firstDifference(*layer.toBuffer(), *rest), QString());
            QVERIFY(floating->hasAlpha());

            layer.alphaLocked = alphaLocked;
            doc->selection = softSelection({0, 0, 2, 2}, 7); // is ignored when placing
            const QTransform toCanvas =
                QTransform::fromTranslate(static_cast<double>(origin.x), static_cast<double>(origin.y)) *
                transform;
            doc->takeDirtyTiles();
            const IRect rect = placeFloating(*doc, *floating, toCanvas);
            QCOMPARE(doc->takeDirtyTiles(), doc->grid().tilesIn(rect));
            RGBABuffer drawn(kWidth, kHeight);
            Resampler({box->data(), box->width(), box->height(), box->width() * 4}, toCanvas)
                .draw(0, 0, kWidth, kHeight, drawn.data());
            const auto wanted = pictureOf(kWidth, kHeight, [&](int64_t x, int64_t y) {
                const PixelBytes old = rest->pixel(x, y);
                return rect.contains(x, y) ? stamped(old, drawn.pixel(x, y), 1, alphaLocked) : old;
            });
            QCOMPARE(firstDifference(*layer.toBuffer(), *wanted), QString());
            doc->revertToLastCommit();
            QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *before), QString());
        }
    }

    void liftedTilesAreTheLayersOwn() {
        PaintDocument doc(2048, 2048, 72, {});
        for (int64_t index = 0; index < 64; ++index)
            doc.activeLayer().writableTile(index).writablePixels()[3] = 255;
        doc.activeLayer().writableTile(63).writablePixels()[kTileBytes - 1] = 255;
        doc.commit("Paint");
        for (const SelectionRef& selection : {SelectionRef(), Selection::all(2048, 2048)}) {
            doc.selection = selection;
            const int64_t before = BlockPool::usedBytes();
            const auto floating = liftFloating(doc);
            QVERIFY(doc.activeLayer().isEmpty());
            QCOMPARE(BlockPool::usedBytes(), before);
            placeFloating(doc, *floating, QTransform::fromTranslate(256, -512));
            QCOMPARE(BlockPool::usedBytes(), before);
            doc.revertToLastCommit();
            doc.activeLayer().removeAllTiles();
            placeFloating(doc, *floating, QTransform::fromTranslate(3, 5));
            QVERIFY(BlockPool::usedBytes() - before <= 64 * kTileBytes);
            doc.revertToLastCommit();
        }
    }

    void aLiftTakesAllThatIsSelectedAndNoMore() {
        PaintDocument doc(kWidth, kHeight, 72, {});
        Layer& layer = doc.activeLayer();
        QVERIFY(!liftFloating(doc)); // nothing there
        layer.writableTile(0);
        QVERIFY(!liftFloating(doc));
        paintRect(doc, layer, {250, 200, 20, 90}, {1, 2, 3, 4});
        layer.isLocked = true;
        const uint64_t before = doc.fingerprint();
        QVERIFY(!liftFloating(doc));
        QCOMPARE(doc.fingerprint(), before);
        layer.isLocked = false;
        doc.takeDirtyTiles();
        const auto floating = liftFloating(doc);
        QCOMPARE(floating->origin, (IRect{250, 200, 20, 90}));
        QCOMPARE(floating->pixels->pixel(269, 289), (PixelBytes{1, 2, 3, 4}));
        QVERIFY(layer.isEmpty());
        QCOMPARE(doc.takeDirtyTiles(), (std::vector<int64_t>{0, 1, 3, 4}));
        // Nothing under a selection is lifted too, and makes no tile.
        layer.removeAllTiles();
        doc.selection = softSelection({240, 10, 30, 20}, 1);
        QCOMPARE(liftFloating(doc)->origin, doc.selection->bounds());
        QVERIFY(tilesOf(layer).empty());
        // Tiles inside the box of which no pixel is selected stay shared with the history.
        layer.load(*noise(kWidth, kHeight, 2));
        doc.commit("Paint");
        auto both = tilesOf(layer);
        doc.selection = selectionOf(kWidth, kHeight, [](int64_t x, int64_t y) {
            return x + y == 0 || x + y == kWidth + kHeight - 2 ? 200 : 0;
        });
        liftFloating(doc);
        both.merge(tilesOf(layer));
        QCOMPARE(both.size(), std::size_t{6 + 2});
    }

    void pixelsWithoutALayerOrOffTheCanvasAreLost() {
        const auto doc = documentOf(*noise(kWidth, kHeight, 8));
        const auto floating = liftFloating(*doc);
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
        for (const SelectionRef& selection : {SelectionRef(), softSelection({240, 3, 100, 290}, 2)}) {
            for (Merged merged : {Merged::no, Merged::yes}) {
                doc->selection = selection;
                const auto source = merged == Merged::yes ? flattened(*doc) : doc->activeLayer().toBuffer();
                const uint64_t before = doc->fingerprint();
                const auto copy = copyPixels(*doc, merged);
                QCOMPARE(doc->fingerprint(), before);
                const IRect rect = selection ? selection->bounds() : doc->grid().bounds();
                QCOMPARE(copy->rect, rect);
                const auto wanted = pictureOf(rect.w, rect.h, [&](int64_t x, int64_t y) {
                    return taken(source->pixel(x + rect.x, y + rect.y), selection, x + rect.x, y + rect.y);
                });
                QCOMPARE(firstDifference(*copy->buffer, *wanted), QString());
            }
        }
    }

    void thinAndHugeCanvasesCostWhatTheyHold() {
        for (const auto& [w, h] : {std::pair<int64_t, int64_t>{30000, 1}, {1, 1}, {30000, 30000}}) {
            PaintDocument doc(w, h, 72, {});
            paintRect(doc, doc.activeLayer(), {w - 1, h - 1, 1, 1}, {5, 6, 7, 8});
            const auto floating = liftFloating(doc);
            QCOMPARE(floating->origin, (IRect{w - 1, h - 1, 1, 1}));
            QCOMPARE(placeFloating(doc, *floating, QTransform()), (IRect{0, 0, 1, 1}));
            QCOMPARE(doc.activeLayer().pixel(0, 0), (PixelBytes{5, 6, 7, 8}));
            QCOMPARE(tilesOf(doc.activeLayer()).size(), std::size_t{1});
            QCOMPARE(copyPixels(doc, Merged::no)->buffer->byteCount(), int64_t{4});
        }
    }
};

QIRN_TEST(tst_Floating)
#include "tst_Floating.moc"

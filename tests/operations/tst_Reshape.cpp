#include "operations/Reshape.h"
#include "platform/Parallel.h"
#include "platform/resample/Resampler.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

using Change = std::function<void(PaintDocument&)>;
using Where = std::function<std::pair<int64_t, int64_t>(int64_t x, int64_t y)>;

/// Empty when every pixel of every layer is the one that `where` names in the old picture.
QString firstMisplaced(const PaintDocument& doc, const PaintDocument& old, const Where& where) {
    QString wrong;
    for (int64_t i = 0; i < doc.layerCount() && wrong.isEmpty(); ++i) {
        const auto wanted = pictureOf(doc.grid().width, doc.grid().height, [&](int64_t x, int64_t y) {
            const auto [ox, oy] = where(x, y);
            return old.layer(i).pixel(ox, oy);
        });
        wrong = firstDifference(*doc.layer(i).toBuffer(), *wanted);
    }
    return wrong;
}

/// Every byte beyond the edge of the canvas must be 0: it would reappear when the canvas grows.
bool edgesAreClean(const PaintDocument& doc) {
    bool clean = true;
    for (const LayerRef& layer : doc.layers()) {
        layer->tiles().forEachTile([&](int64_t index, const Tile& tile) {
            const IRect part = doc.grid().rectOf(index);
            for (int64_t i = 0; i < kTilePixels; ++i) {
                if (i % kTileSize >= part.w || i / kTileSize >= part.h)
                    clean = clean && tile.pixels()[i * 4 + 3] == 0;
            }
        });
    }
    return clean;
}

} // namespace

class tst_Reshape : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void turnsAndFlipsMoveEveryPixel() {
        for (const auto& [width, height] : {std::pair<int64_t, int64_t>{530, 300}, {1, 1000}}) {
            const auto old = randomDocument(width, height, 3, 11), doc = randomDocument(width, height, 3, 11);
            const int64_t right = width - 1, bottom = height - 1;
            const Where wheres[] = {[=](int64_t x, int64_t y) { return std::pair(y, bottom - x); },
                                    [=](int64_t x, int64_t y) { return std::pair(right - x, bottom - y); },
                                    [=](int64_t x, int64_t y) { return std::pair(right - y, x); }};
            for (int turns : {1, 2, 3, -1, -2, -3, 5, 1'000'003}) {
                rotate(*doc, turns);
                QCOMPARE(doc->grid(), turns % 2 ? TileGrid(height, width) : TileGrid(width, height));
                QCOMPARE(firstMisplaced(*doc, *old, wheres[(turns & 3) - 1]), QString());
                QVERIFY(edgesAreClean(*doc));
                rotate(*doc, -turns);
                QCOMPARE(doc->fingerprint(), old->fingerprint());
            }
            flipCanvas(*doc, FlipAxis::horizontal);
            QCOMPARE(
                firstMisplaced(*doc, *old, [=](int64_t x, int64_t y) { return std::pair(right - x, y); }),
                QString());
            flipCanvas(*doc, FlipAxis::vertical);
            QCOMPARE(firstMisplaced(*doc, *old, wheres[1]), QString());
        }
    }

    void theCanvasGrowsAndShrinksRoundItsAnchor() {
        const auto old = randomDocument(300, 200, 2, 5);
        old->fillLayer(old->layer(0), PaintColor::white()); // beyond the canvas edge too
        old->commit("White");
        const auto check = [&](const Change& change, const IRect& kept) { // on the old canvas
            old->selection = Selection::all(300, 200);
            PaintDocument doc(300, 200, 72, old->layers(), 1);
            change(*old);
            QCOMPARE(old->grid(), TileGrid(kept.w, kept.h));
            QVERIFY(!old->selection && edgesAreClean(*old));
            QCOMPARE(firstMisplaced(*old, doc,
                                    [&](int64_t x, int64_t y) { return std::pair(x + kept.x, y + kept.y); }),
                     QString());
            old->revertToLastCommit();
        };
        const auto resized = [](int64_t w, int64_t h, double ax, double ay) {
            return [=](PaintDocument& doc) { resizeCanvas(doc, w, h, ax, ay); };
        };
        check(resized(401, 301, 0.5, 0.5), {-51, -51, 401, 301}); // halves away from zero
        check(resized(199, 99, 0.5, 0.5), {51, 51, 199, 99});
        check(resized(350, 150, 1, 1), {-50, 50, 350, 150});
        check(resized(300 + 512, 300, 1, 0), {-512, 0, 812, 300}); // tiles fall on tiles
        check(resized(-7, 0, 1, 0.5), {299, 100, 1, 1});           // raised to 1 first
        check(resized(400, 300, std::nan(""), 7), {0, -100, 400, 300});
        for (const IRect& rect : {IRect{50, 3, 240, 190}, IRect{-50, -60, 200, 100}, IRect{256, 0, 20, 200},
                                  IRect{280, 190, 1'000'000, 1'000'000}, IRect{0, 0, 300, 200}})
            check([&](PaintDocument& doc) { cropTo(doc, rect); }, rect.intersection({0, 0, 300, 200}));
    }

    void layersKeepWhoTheyAre() {
        forRows<Change>(
            {{"image size", [](PaintDocument& doc) { resizeImage(doc, 600, 100); }},
             {"the same image size", [](PaintDocument& doc) { resizeImage(doc, 300, 200); }},
             {"canvas size", [](PaintDocument& doc) { resizeCanvas(doc, 90, 900, 0.5, 1); }},
             {"crop",
              [](PaintDocument& doc) {
                  cropTo(doc, {1, 2, 60, 40});
              }},
             {"turn", [](PaintDocument& doc) { rotate(doc, 1); }},
             {"flip", [](PaintDocument& doc) { flipCanvas(doc, FlipAxis::vertical); }}},
            [](const Change& change) {
                auto doc = randomDocument(300, 200, 5, 9);
                doc->setActiveIndex(2);
                doc->selection = Selection::all(300, 200);
                doc->commit("Before");
                const uint64_t before = doc->fingerprint();
                const int64_t counted = doc->changeCount();
                int calls = 0;
                doc->onGridChange = [&] {
                    ++calls;
                    QVERIFY(!doc->selection);
                    QCOMPARE(doc->layer(0).grid(), doc->grid());
                    doc->takeDirtyTiles();
                };
                change(*doc);
                QCOMPARE(calls, 1);
                QVERIFY(!doc->selection && doc->activeIndex() == 2 && doc->changeCount() == counted);
                QCOMPARE(int64_t(doc->takeDirtyTiles().size()), doc->grid().count());
                for (int64_t i = 0; i < 5; ++i) {
                    // But for their pixels they have one fingerprint, and one identity.
                    LayerState was = doc->history().back().state.layers[static_cast<std::size_t>(i)];
                    LayerState is = doc->layer(i).captureState();
                    was.tiles = is.tiles = TileArray(1);
                    QVERIFY(is.id == was.id && is.opacity == was.opacity);
                    QCOMPARE(Layer(is, TileGrid(1, 1)).fingerprint(),
                             Layer(was, TileGrid(1, 1)).fingerprint());
                }
                doc->onGridChange = nullptr;
                doc->commit("Reshape");
                const uint64_t after = doc->fingerprint();
                doc->undo();
                QVERIFY(doc->fingerprint() == before && doc->selection);
                QCOMPARE(doc->grid(), TileGrid(300, 200));
                doc->redo();
                QCOMPARE(doc->fingerprint(), after);
            });
    }

    /// tst_Resampler compares the filter with its definition; here the outermost pixels are repeated beyond the
    /// edges.
    void imageSizeFollowsTheFilterUpToTheEdges() {
        const auto source = noise(300, 280, 6);
        constexpr int64_t kBeyond = 600; // twice the widest filter
        const auto wide = pictureOf(300 + 2 * kBeyond, 280 + 2 * kBeyond, [&](int64_t x, int64_t y) {
            return source->pixel(std::clamp<int64_t>(x - kBeyond, 0, 299),
                                 std::clamp<int64_t>(y - kBeyond, 0, 279));
        });
        for (const auto& [width, height] : {std::pair<int64_t, int64_t>{600, 560}, {431, 13}, {257, 1}}) {
            const auto doc = documentOf(*source);
            resizeImage(*doc, width, height);
            QTransform scaled = QTransform::fromScale(double(width) / 300, double(height) / 280);
            scaled.translate(-kBeyond, -kBeyond);
            RGBABuffer wanted(width, height);
            Resampler({wide->data(), wide->width(), wide->height(), wide->width() * 4}, scaled)
                .draw(0, 0, width, height, wanted.data());
            const auto got = doc->activeLayer().toBuffer();
            for (int64_t i = 0; i < got->byteCount(); ++i)
                QVERIFY2(std::abs(got->data()[i] - wanted.data()[i]) <= 1, qPrintable(QString::number(i)));
            QVERIFY(edgesAreClean(*doc));
            setConcurrency(1);
            const auto alone = documentOf(*source);
            resizeImage(*alone, width, height);
            setConcurrency(0);
            QCOMPARE(alone->fingerprint(), doc->fingerprint());
        }
    }

    void layersStaySmall() {
        // 30,000 x 30,000 pixels of which one tile, and a whole background, are there.
        PaintDocument doc(30000, 30000, 72, PaintColor::white());
        paintRect(doc, doc.activeLayer(), {20000, 9000, 10, 10}, {9, 8, 7, 255});
        const auto check = [&](std::size_t backgroundTiles) {
            const std::size_t count = tilesOf(doc.layer(0)).size();
            QVERIFY2(count <= backgroundTiles, qPrintable(QString::number(count)));
            QVERIFY(tilesOf(doc.layer(1)).size() <= 4 && !doc.layer(1).isEmpty());
            const int64_t w = doc.grid().width, h = doc.grid().height;
            for (const auto& [x, y] : {std::pair{w - 1, h - 1}, {int64_t{0}, h - 1}, {w / 2, h / 2}})
                QCOMPARE(doc.layer(0).pixel(x, y), (PixelBytes{255, 255, 255, 255}));
        };
        rotate(doc, 1);
        check(9);
        QCOMPARE(doc.layer(1).pixel(20990, 20009), (PixelBytes{9, 8, 7, 255}));
        flipCanvas(doc, FlipAxis::horizontal);
        check(16);
        cropTo(doc, {100, 100, 29000, 29800});
        check(25);
        resizeImage(doc, 14500, 14900);
        check(600); // where not all around is of one color it is scaled
    }

    void tilesThatFallOnTilesAreNotCopied() {
        auto doc = randomDocument(1024, 768, 1, 4);
        const auto before = tilesOf(doc->layer(0));
        resizeCanvas(*doc, 1024 + 512, 768 + 100, 1, 0);
        QCOMPARE(tilesOf(doc->layer(0)), before);
    }
};

QIRN_TEST(tst_Reshape)
#include "tst_Reshape.moc"

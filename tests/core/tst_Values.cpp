#include "core/DirtyTiles.h"
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/SeededRandom.h"
#include "core/TileGrid.h"
#include "support/Pictures.h"
#include "support/Stops.h"
#include "support/TestMain.h"

#include <cmath>
#include <limits>

using namespace qirn;
using namespace qirn::test;

namespace {

/// Somewhere near the origin, many of them empty.
IRect smallRect(SeededRandom& random) {
    const auto among = [&random](int least, int most) {
        return least + static_cast<int64_t>(random.next() % static_cast<uint64_t>(most - least + 1));
    };
    return {among(-1, 2), among(-1, 1), among(-1, 3), among(0, 2)};
}

/// Both within, neither empty but perhaps the first.
IRect boxOf(const IRect& a, const IRect& b) {
    if (a.isEmpty()) return b;
    const int64_t x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.w, b.x + b.w) - x, std::max(a.y + a.h, b.y + b.h) - y};
}

} // namespace

class tst_Values : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rectanglesCombineAsSetsOfPixels() {
        SeededRandom random(5);
        for (int i = 0; i < 5000; ++i) {
            const IRect a = smallRect(random), b = smallRect(random);
            IRect common, both; // of their pixels
            for (int64_t pixel = 0; pixel < 63; ++pixel) {
                const int64_t x = pixel % 9 - 2, y = pixel / 9 - 2;
                const IRect one{x, y, 1, 1};
                const bool inA = !a.isEmpty() && a.contains(x, y), inB = !b.isEmpty() && b.contains(x, y);
                if (inA && inB) common = boxOf(common, one);
                if (inA || inB) both = boxOf(both, one);
            }
            QCOMPARE(a.intersection(b), common);
            if (!both.isEmpty()) QCOMPARE(a.united(b), both);
        }
        QCOMPARE((IRect{10, 20, 30, 40}.insetBy(-2)), (IRect{8, 18, 34, 44}));
        QCOMPARE((IRect{10, 20, 3, 40}.insetBy(2)), (IRect{12, 22, -1, 36}));
        QCOMPARE((IRect{10, 20, 30, 40}.description()), QStringLiteral("(10,20 30x40)"));
    }

    void coveringRoundsOutward() {
        const double infinity = std::numeric_limits<double>::infinity();
        for (const auto& [rect, expected] : {std::pair{QRectF(-0.25, 1.75, 1.5, 1.0), IRect{-1, 1, 3, 2}},
                                             {QRectF(3, 4, 5, 6), {3, 4, 5, 6}},
                                             {QRectF(8, 10, -5, -6), {3, 4, 5, 6}}, // backwards
                                             {QRectF(), {}},
                                             {QRectF(-infinity, 0, infinity, 1), {}},
                                             {QRectF(0, std::nan(""), 1, 1), {}}})
            QCOMPARE(IRect::covering(rect), expected);
    }

    void noRectangleWraps() {
        const int64_t top = std::numeric_limits<int64_t>::max();
        QVERIFY(stopsTheProcess([&] { (void)IRect{top, 0, 1, 1}.maxX(); }));
        QVERIFY(stopsTheProcess([&] { (void)IRect{0, 0, 1, 1}.insetBy(top); }));
        QVERIFY(stopsTheProcess([&] { (void)IRect::covering({1e300, 0, 1, 1}); }));
        QVERIFY(!stopsTheProcess([&] { (void)IRect{top - 1, 0, 1, 1}.maxX(); }));
    }

    void hexTexts() {
        const auto check = [](const QString& text, const QList<int>& bytes) {
            const auto color = PaintColor::fromHex(text);
            QCOMPARE(color.has_value(), !bytes.isEmpty());
            if (!color) return;
            QCOMPARE((QList<int>{color->r8(), color->g8(), color->b8(), color->a8()}), bytes);
            PaintColor opaque = *color;
            opaque.a = 1;
            QVERIFY(PaintColor::fromHex(color->hex()) == opaque);
        };
        check("#0D0221", {13, 2, 33, 255});
        check("abc", {0xAA, 0xBB, 0xCC, 255});
        check("01fE0300", {1, 254, 3, 0});
        check(" \t#F80\n", {255, 136, 0, 255});
        for (const char* none : {"12345", "12345G", "-12345", "##12345", "", "12345\u0666"}) check(none, {});
    }

    void hueSaturationAndBrightness() {
        struct Row {
            PaintColor color;
            PaintColor::HSB wanted;
        };
        for (const Row& row : {Row{PaintColor::black(), {0, 0, 0}}, Row{PaintColor::white(), {0, 0, 1}},
                               Row{PaintColor(0, 0, 1), {2. / 3, 1, 1}},
                               Row{PaintColor(1, 1, 0), {1. / 6, 1, 1}}, // red wins a tie with green
                               Row{PaintColor(0, 1, 1), {.5, 1, 1}},     // green one with blue
                               Row{PaintColor(1, 0, .5), {11. / 12, 1, 1}}}) {
            const PaintColor::HSB got = row.color.hsb();
            QCOMPARE(got.h, row.wanted.h);
            QCOMPARE(got.s, row.wanted.s);
            QCOMPARE(got.b, row.wanted.b);
            QCOMPARE(PaintColor::fromHSV(got.h - 3, got.s, got.b).hex(), row.color.hex());
        }
    }

    void colorsStayInRange() {
        QVERIFY(PaintColor(-1, 2, 0.5, 7) == PaintColor(0, 1, 0.5, 1));
        QVERIFY(PaintColor(std::nan(""), 0, 0, 1) == PaintColor::black());
        QVERIFY(PaintColor::fromHSV(-1e-17, 1, 1) == PaintColor(1, 0, 0));
        PaintColor bad;
        bad.r = 1.5;
        QVERIFY(stopsTheProcess([&] { (void)bad.r8(); }));
    }

    void buffersHoldPremultipliedPixels() {
        RGBABuffer tiny(0, -3);
        QCOMPARE(tiny.byteCount(), int64_t{4});
        tiny.fill({1, 0, 0, 0.5});
        QCOMPARE(text(tiny.pixel(0, 0)), QStringLiteral("128,0,0,128"));
        for (const auto& [x, y] : {std::pair{-1, 0}, {0, 1}}) QCOMPARE(tiny.pixel(x, y), PixelBytes{});

        const auto picture = noise(37, 11, 5);
        const auto copy = picture->copy();
        const QImage image = picture->makeImage();
        picture->fill(PaintColor::clear());
        QCOMPARE(firstDifference(*copy, *RGBABuffer::fromImage(image)), QString());
        QVERIFY(copy->fingerprint() != picture->fingerprint());
        QVERIFY(!RGBABuffer::fromImage(QImage()));
    }

    void gridsCutTheCanvasIntoTiles() {
        struct Row {
            int64_t width, height, tiles;
        };
        for (const auto& [width, height, tiles] : {Row{1, 1, 1}, Row{255, 256, 1}, Row{257, 256, 2},
                                                   Row{3840, 2160, 135}, Row{30000, 30000, 118 * 118}}) {
            const TileGrid grid(width, height);
            QCOMPARE(grid.count(), tiles);
            // The parts cover the canvas without overlap, and a rectangle touches those that it meets.
            int64_t area = 0;
            const IRect rects[] = {{250, 250, 12, 12}, {-5, -5, 6, 6},       {256, 0, 256, 1},
                                   {width, 0, 10, 10}, {255, 0, 1, 1},       {-9, 3, 99999, 1},
                                   {5, 5, 0, 9},       {0, 0, width, height}};
            std::vector<int64_t> touched[std::size(rects)];
            for (int64_t i = 0; i < grid.count(); ++i) {
                const IRect part = grid.rectOf(i);
                QCOMPARE(part.intersection(grid.bounds()), part);
                area += part.w * part.h;
                for (std::size_t r = 0; r < std::size(rects); ++r) {
                    if (!part.intersection(rects[r]).isEmpty()) touched[r].push_back(i);
                }
            }
            QCOMPARE(area, width * height);
            for (std::size_t r = 0; r < std::size(rects); ++r) QCOMPARE(grid.tilesIn(rects[r]), touched[r]);
        }
    }

    void dirtyTilesAreEachTakenOnce() {
        DirtyTiles dirty;
        dirty.add(7, {0, 0, 2, 2});
        dirty.add(2, {5, 5, 1, 1});
        dirty.add(7, {8, 4, 2, 2}); // one part that holds both
        QCOMPARE(dirty.take(), (std::vector<DirtyTile>{{2, {5, 5, 1, 1}}, {7, {0, 0, 10, 6}}}));
        QVERIFY(dirty.take().empty());
        dirty.add(40, {1, 1, 1, 1});
        dirty.clear();
        dirty.add(1, {0, 0, 4, 4});
        QCOMPARE(dirty.take(), (std::vector<DirtyTile>{{1, {0, 0, 4, 4}}}));
    }
};

QIRN_TEST(tst_Values)
#include "tst_Values.moc"

#include "core/SeededRandom.h"
#include "operations/Selection.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;

namespace {

constexpr int kWidth = 50, kHeight = 30;

QPainterPath rectangle(double x, double y, double w, double h) {
    QPainterPath path;
    path.addRect(x, y, w, h);
    return path;
}

SelectionRef made(const QPainterPath& path, SelectionOp op = SelectionOp::replace,
                  const SelectionRef& existing = {}, Antialias antialias = Antialias::yes) {
    return Selection::make(path, op, existing, kWidth, kHeight, antialias);
}

/// Every byte may occur; zeros and full bytes are common.
SelectionRef randomMask(uint64_t seed) {
    SeededRandom random(seed);
    std::vector<uint8_t> mask(kWidth * kHeight);
    for (uint8_t& byte : mask) {
        const uint64_t draw = random.next();
        byte = draw % 3 == 0 ? 0 : draw % 3 == 1 ? 255 : static_cast<uint8_t>(draw >> 8);
    }
    return Selection::fromMask(mask, kWidth, kHeight);
}

/// The smallest box of all bytes that are not 0.
IRect box(const Selection& s) {
    IRect bounds;
    for (int64_t y = 0; y < s.height(); ++y) {
        for (int64_t x = 0; x < s.width(); ++x) {
            if (s.value(x, y) != 0) bounds = bounds.united({x, y, 1, 1});
        }
    }
    return bounds;
}

} // namespace

class tst_Selection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingSelectedIsNoSelection() {
        const SelectionRef some = made(rectangle(5, 5, 10, 10));
        QVERIFY(!made(rectangle(-20, 5, 10, 10)));
        QVERIFY(!made(rectangle(5, 30, 10, 10)));
        QVERIFY(!made(QPainterPath(), SelectionOp::replace, some)); // a click without a drag
        QVERIFY(!made(rectangle(5, 5, 10, 10), SelectionOp::subtract));
        QVERIFY(!made(rectangle(5, 5, 10, 10), SelectionOp::intersect));
        QVERIFY(!made(rectangle(5, 5, 10, 10), SelectionOp::subtract, some));
        QVERIFY(!made(rectangle(20, 20, 9, 9), SelectionOp::intersect, some));
        QVERIFY(!Selection::fromMask(std::vector<uint8_t>(kWidth * kHeight), kWidth, kHeight));
        QVERIFY(!Selection::fromMask(std::vector<uint8_t>(kWidth * kHeight - 1, 9), kWidth, kHeight));
        QVERIFY(!Selection::fromMask({}, 0, 0));
    }

    void masksCombineByTheArithmetic_data() {
        QTest::addColumn<SelectionOp>("op");
        QTest::newRow("replace") << SelectionOp::replace;
        QTest::newRow("add") << SelectionOp::add;
        QTest::newRow("subtract") << SelectionOp::subtract;
        QTest::newRow("intersect") << SelectionOp::intersect;
    }
    void masksCombineByTheArithmetic() {
        QFETCH(SelectionOp, op);
        QPainterPath path;
        path.addEllipse(QRectF(3.3, 2.7, 30.4, 25.1));
        const SelectionRef existing = randomMask(5);
        const auto fresh = Selection::rasterize(path, kWidth, kHeight, Antialias::yes);
        const SelectionRef result = made(path, op, existing);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const int n = fresh[static_cast<std::size_t>(y * kWidth + x)], o = existing->value(x, y);
                const int wanted[] = {n, std::max(n, o), ((255 - n) * o + 127) / 255, (n * o + 127) / 255};
                QCOMPARE(int(result->value(x, y)), wanted[static_cast<int>(op)]);
            }
        }
        QCOMPARE(result->bounds(), box(*result));
        // The outline is a hint: both paths, however they were combined.
        QPainterPath outline = op == SelectionOp::replace ? QPainterPath() : existing->outline();
        outline.addPath(path);
        QCOMPARE(result->outline(), outline);
    }

    void aSoftEdgeTakenFromItselfLeavesARim() {
        const QPainterPath path = rectangle(5.5, 5, 10, 10);
        const SelectionRef rim = made(path, SelectionOp::subtract, made(path));
        QVERIFY(rim);
        QCOMPARE(int(rim->value(5, 7)), 64);
        QCOMPARE(int(rim->value(6, 7)), 0);
        QVERIFY(!made(path, SelectionOp::subtract, made(path, SelectionOp::replace, {}, Antialias::no),
                      Antialias::no));
    }

    void addingADisjointRectangleKeepsBoth() {
        const SelectionRef both =
            made(rectangle(30, 20, 5, 5), SelectionOp::add, made(rectangle(2, 3, 4, 5)));
        QCOMPARE(both->bounds(), (IRect{2, 3, 33, 22}));
        QCOMPARE(int(both->value(2, 3)), 255);
        QCOMPARE(int(both->value(34, 24)), 255);
        QCOMPARE(int(both->value(10, 10)), 0);
        QCOMPARE(made(rectangle(2, 3, 4, 5), SelectionOp::add)->bounds(), (IRect{2, 3, 4, 5})); // to nothing
    }

    void hardSelectionsHaveNoInBetween() {
        QPainterPath path;
        path.addEllipse(QRectF(3.3, 2.7, 30.4, 25.1));
        const SelectionRef hard = made(path, SelectionOp::replace, {}, Antialias::no);
        for (int64_t i = 0; i < kWidth * kHeight; ++i)
            QVERIFY(hard->data()[i] == 0 || hard->data()[i] == 255);
    }

    void movingLosesWhatLeavesTheCanvas_data() {
        QTest::addColumn<int>("dx");
        QTest::addColumn<int>("dy");
        QTest::newRow("not at all") << 0 << 0;
        QTest::newRow("a little") << 7 << -3;
        QTest::newRow("nearly out") << -(kWidth - 1) << kHeight - 1;
        QTest::newRow("out to the right") << kWidth << 0;
        QTest::newRow("out below") << 0 << kHeight;
        QTest::newRow("far out") << -1'000'000'000 << 1'000'000'000;
    }
    void movingLosesWhatLeavesTheCanvas() {
        QFETCH(int, dx);
        QFETCH(int, dy);
        const SelectionRef old = randomMask(9);
        const SelectionRef moved = old->offsetBy(dx, dy);
        IRect bounds;
        for (int64_t y = 0; y < kHeight; ++y) {
            for (int64_t x = 0; x < kWidth; ++x) {
                const uint8_t wanted = old->value(x - dx, y - dy);
                QCOMPARE(moved ? moved->value(x, y) : uint8_t{0}, wanted);
                if (wanted != 0) bounds = bounds.united({x, y, 1, 1});
            }
        }
        QCOMPARE(moved != nullptr, !bounds.isEmpty());
        if (!moved) return;
        QCOMPARE(moved->bounds(), bounds);
        QCOMPARE(moved->outline(), old->outline().translated(dx, dy));
    }

    void invertingTurnsEveryByteRound() {
        const SelectionRef old = randomMask(3);
        const SelectionRef inverse = old->inverted();
        for (int64_t i = 0; i < kWidth * kHeight; ++i) QCOMPARE(inverse->data()[i] + old->data()[i], 255);
        QCOMPARE(inverse->bounds(), box(*inverse));
        QCOMPARE(inverse->outline().boundingRect(), QRectF(0, 0, kWidth, kHeight));
        QVERIFY(!Selection::all(kWidth, kHeight)->inverted());
        QCOMPARE(made(rectangle(0, 0, kWidth, 10))->inverted()->bounds(),
                 (IRect{0, 10, kWidth, kHeight - 10}));
    }

    void valuesOutsideTheCanvasAreZero() {
        const SelectionRef all = Selection::all(kWidth, kHeight);
        QCOMPARE(all->bounds(), (IRect{0, 0, kWidth, kHeight}));
        for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {kWidth, 0}, {0, kHeight}})
            QCOMPARE(int(all->value(x, y)), 0);
        QCOMPARE(int(all->value(kWidth - 1, kHeight - 1)), 255);
    }

    void aDocumentInvertsOnlyWhatIsSelected() {
        PaintDocument doc(kWidth, kHeight, 72, {});
        invertSelection(doc);
        QVERIFY(!doc.selection);
        doc.selection = made(rectangle(0, 0, 10, kHeight));
        invertSelection(doc);
        QCOMPARE(doc.selection->bounds(), (IRect{10, 0, kWidth - 10, kHeight}));
        selectAll(doc);
        invertSelection(doc); // nothing left: painting is allowed everywhere
        QVERIFY(!doc.selection);
    }
};

QIRN_TEST(tst_Selection)
#include "tst_Selection.moc"

#include "core/SeededRandom.h"
#include "operations/SelectionOperations.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>
#include <set>

#include <QImage>
#include <QPainter>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int kWidth = 700, kHeight = 530; // 3 x 3 tiles

SelectionRef made(const QPainterPath& path, SelectionOp op = SelectionOp::replace,
                  const SelectionRef& existing = {}, Antialias antialias = Antialias::yes) {
    return Selection::make(path, op, existing, kWidth, kHeight, antialias);
}

/// A selection as one plain mask of the whole canvas, and its operations.
struct PlainSelection {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(kWidth * kHeight);
    QPainterPath outline;

    explicit PlainSelection() = default;
    /// One drawing of a path as large as the canvas.
    PlainSelection(const QPainterPath& path, Antialias antialias) : outline(path) {
        QPainterPath chords;
        for (const QPolygonF& part : path.toSubpathPolygons(QTransform::fromScale(16, 16)))
            chords.addPolygon(QTransform::fromScale(1.0 / 16, 1.0 / 16).map(part));
        chords.setFillRule(Qt::WindingFill);
        QImage image(kWidth, kHeight, QImage::Format_Alpha8);
        image.fill(0);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing, antialias == Antialias::yes);
        painter.fillPath(chords, Qt::white);
        painter.end();
        for (int y = 0; y < kHeight; ++y)
            std::copy_n(image.constScanLine(y), kWidth, bytes.data() + y * kWidth);
    }
    void take(SelectionOp op, const PlainSelection& fresh) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const int n = fresh.bytes[i], o = bytes[i];
            const int wanted[] = {n, std::max(n, o), ((255 - n) * o + 127) / 255, (n * o + 127) / 255};
            bytes[i] = static_cast<uint8_t>(wanted[static_cast<int>(op)]);
        }
        if (op == SelectionOp::replace) outline = {};
        outline.addPath(fresh.outline);
    }
    void move(int64_t dx, int64_t dy) {
        const std::vector<uint8_t> before = bytes;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const int64_t x = static_cast<int64_t>(i) % kWidth - dx,
                          y = static_cast<int64_t>(i) / kWidth - dy;
            bytes[i] = IRect{0, 0, kWidth, kHeight}.contains(x, y)
                           ? before[static_cast<std::size_t>(y * kWidth + x)]
                           : uint8_t{0};
        }
        outline.translate(static_cast<double>(dx), static_cast<double>(dy));
    }
    void invert() {
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(255 - byte);
        outline.addRect(0, 0, kWidth, kHeight);
    }
    /// Empty when a selection is this one, in every byte, its box and its outline.
    QString differenceFrom(const SelectionRef& selection) const {
        IRect box;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const int64_t x = static_cast<int64_t>(i) % kWidth, y = static_cast<int64_t>(i) / kWidth;
            const int got = selection ? selection->value(x, y) : 0;
            if (got != bytes[i]) return QString("%1,%2: %3 for %4").arg(x).arg(y).arg(got).arg(bytes[i]);
            if (got != 0) box = box.united({x, y, 1, 1});
        }
        if (box.isEmpty() != !selection) return "there is one without a byte";
        if (selection && selection->bounds() != box) return selection->bounds().description();
        return !selection || selection->outline() == outline ? QString() : "outline";
    }
};

/// Of any size and place, across tile seams and canvas edges, also off the canvas; every third on a grid of 1/128
/// pixels, half of QPainter's resolution, where rounding is a tie.
QPainterPath anyShape(SeededRandom& random) {
    const double spread = 0.2 + 1.5 * random.unit(), grid = random.next() % 3 == 0 ? 128 : 1e9;
    const auto at = [&] {
        const double x = kWidth * (0.5 + spread * (random.unit() - 0.5));
        const double y = kHeight * (0.5 + spread * (random.unit() - 0.5));
        return QPointF(std::round(x * grid) / grid, std::round(y * grid) / grid);
    };
    QPainterPath path;
    QPolygonF corners;
    const uint64_t kind = random.next() % 4;
    const QPointF middle = at();
    if (kind == 0) path.addRect(QRectF(middle, at()).normalized());
    if (kind == 1) path.addEllipse(QRectF(middle, at()).normalized());
    for (uint64_t i = 0, count = 3 + random.next() % 30; kind == 2 && i < count; ++i) corners += at();
    for (int i = 0; kind == 3 && i < 4000; ++i) { // a hand's lasso
        const double angle = i * 0.0015708,
                     radius = kHeight * (0.3 + 0.1 * std::sin(angle * 7) + 0.01 * random.unit());
        corners += middle + radius * QPointF(std::cos(angle), std::sin(angle));
    }
    path.addPolygon(corners);
    return path;
}

int ownTiles(const Selection& selection, const Selection* sharedWith = nullptr) {
    std::set<const MaskTile*> tiles;
    selection.tiles().forEachOwnTile([&](const MaskTile& tile) { tiles.insert(&tile); });
    if (sharedWith) sharedWith->tiles().forEachOwnTile([&](const MaskTile& tile) { tiles.erase(&tile); });
    return static_cast<int>(tiles.size());
}

} // namespace

class tst_Selection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingSelectedIsNoSelection() {
        const SelectionRef some = made(rectangle(5, 5, 10, 10));
        QVERIFY(!made(rectangle(5, kHeight, 10, 10)) && !made(rectangle(-20, 5, 10, 10)));
        QVERIFY(!made(QPainterPath(), SelectionOp::replace, some)); // a click without a drag
        QVERIFY(!Selection::fromMask(std::vector<uint8_t>(kWidth * kHeight), kWidth, kHeight));
        QVERIFY(!Selection::fromMask(std::vector<uint8_t>(kWidth * kHeight - 1, 9), kWidth, kHeight));
        QVERIFY(!Selection::fromMask({}, 0, 0));
        QVERIFY(!some->offsetBy(-1'000'000'000, 1'000'000'000) && !some->offsetBy(0, kHeight));
        QVERIFY(!Selection::all(kWidth, kHeight)->inverted());
        QCOMPARE(Selection::all(kWidth, kHeight)->offsetBy(9, -7)->bounds(),
                 (IRect{9, 0, kWidth - 9, kHeight - 7}));
    }

    void tilesAreThoseOfOneCanvas() {
        SeededRandom random(11);
        SelectionRef selection;
        PlainSelection plain;
        for (int step = 0; step < 100; ++step) {
            const auto among = [&random](int64_t most) {
                return static_cast<int64_t>(random.next() % static_cast<uint64_t>(2 * most + 1)) - most;
            };
            const uint64_t action = random.next() % 10;
            if (action < 7 || !selection) {
                const auto op = static_cast<SelectionOp>(selection ? random.next() % 4 : 0);
                const Antialias antialias = random.next() % 3 == 0 ? Antialias::no : Antialias::yes;
                const QPainterPath path = anyShape(random);
                selection = made(path, op, selection, antialias);
                plain.take(op, PlainSelection(path, antialias));
            } else if (action < 9) {
                const bool byTiles = random.next() % 3 == 0;
                const int64_t dx = byTiles ? among(1) * 256 : among(kWidth),
                              dy = byTiles ? among(1) * 256 : among(200);
                selection = selection->offsetBy(dx, dy);
                plain.move(dx, dy);
            } else {
                selection = selection->inverted();
                plain.invert();
            }
            const QString difference = plain.differenceFrom(selection);
            QVERIFY2(difference.isEmpty(), qPrintable(QString("step %1: %2").arg(step).arg(difference)));
        }
    }

    void memoryIsThatOfTheEdges() {
        QPainterPath ellipse, dot;
        ellipse.addEllipse(QRectF(14000.3, 13900.7, 2000, 2000));
        dot.addEllipse(QRectF(14900, 13890, 30, 30));
        const SelectionRef one =
            Selection::make(ellipse, SelectionOp::replace, {}, 30000, 30000, Antialias::yes);
        QCOMPARE(one->bounds(), (IRect{14000, 13900, 2001, 2001}));
        QVERIFY2(ownTiles(*one) <= 40, qPrintable(QString::number(ownTiles(*one))));
        QVERIFY(ownTiles(*Selection::make(dot, SelectionOp::add, one, 30000, 30000, Antialias::yes),
                         one.get()) <= 4);
        QCOMPARE(ownTiles(*one->offsetBy(-100, 12000)->inverted()), ownTiles(*one->offsetBy(-100, 12000)));
        QCOMPARE(ownTiles(*Selection::all(30000, 30000)), 0);
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

#include "core/SeededRandom.h"
#include "platform/PathCoverage.h"
#include "support/TestMain.h"

#include <algorithm>
#include <cmath>

#include <QTransform>

using namespace qirn;

namespace {

struct Crossing {
    double x;
    int direction;
};

std::vector<Crossing> crossingsAt(const QList<QPolygonF>& outlines, double y) {
    std::vector<Crossing> crossings;
    for (const QPolygonF& outline : outlines) {
        for (qsizetype i = 0; i < outline.size(); ++i) {
            const QPointF a = outline[i], b = outline[(i + 1) % outline.size()];
            if ((a.y() <= y) == (b.y() <= y)) continue;
            const double x = a.x() + (b.x() - a.x()) * ((y - a.y()) / (b.y() - a.y()));
            crossings.push_back({x, a.y() < b.y() ? 1 : -1});
        }
    }
    std::sort(crossings.begin(), crossings.end(), [](const auto& l, const auto& r) { return l.x < r.x; });
    return crossings;
}

/// The covered area of each pixel of a row, from 0 to 255, by exact spans on many lines through the row.
std::vector<double> areaOfRow(const QList<QPolygonF>& outlines, int y, int width) {
    constexpr int kLines = 128;
    std::vector<double> area(static_cast<std::size_t>(width));
    for (int line = 0; line < kLines; ++line) {
        const auto crossings = crossingsAt(outlines, y + (line + 0.5) / kLines);
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].direction;
            if (winding == 0) continue;
            for (int x = 0; x < width; ++x) {
                const double left = std::max<double>(crossings[i].x, x);
                const double right = std::min<double>(crossings[i + 1].x, x + 1);
                if (right > left) area[static_cast<std::size_t>(x)] += (right - left) * 255 / kLines;
            }
        }
    }
    return area;
}

bool centreIsInside(const QList<QPolygonF>& outlines, double x, double y) {
    int winding = 0;
    for (const Crossing& crossing : crossingsAt(outlines, y)) {
        if (crossing.x <= x) winding += crossing.direction;
    }
    return winding != 0;
}

/// The outlines as fine polygons, so that the chords of a curve do not count.
QList<QPolygonF> finePolygons(const QPainterPath& path) {
    QList<QPolygonF> outlines;
    for (const QPolygonF& outline : path.toSubpathPolygons(QTransform::fromScale(256, 256)))
        outlines += QTransform::fromScale(1.0 / 256, 1.0 / 256).map(outline);
    return outlines;
}

enum class Corners { byAngle, anywhere };

/// Nine corners; in the order of their angles they make an outline that does not cross itself.
QPainterPath randomOutline(uint64_t seed, double size, Corners corners) {
    SeededRandom random(seed);
    QPolygonF points;
    for (int i = 0; i < 9; ++i) {
        const double first = random.unit(), second = random.unit();
        const double angle = (i + 0.8 * first) * 6.283 / 9, radius = 0.1 + 0.5 * second;
        points += corners == Corners::anywhere
                      ? size * QPointF(first, second)
                      : size * QPointF(0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle));
    }
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

std::vector<uint8_t> covered(const QPainterPath& path, Antialias antialias, int width, int height) {
    std::vector<uint8_t> mask(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    fillPathCoverage(path, antialias, mask.data(), width, height);
    return mask;
}

QPainterPath rectangle(double x, double y, double w, double h) {
    QPainterPath path;
    path.addRect(x, y, w, h);
    return path;
}

} // namespace

class tst_PathCoverage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shapesCoverTheirArea_data() {
        QTest::addColumn<QPainterPath>("path");
        QTest::addColumn<bool>("crossesItself");
        QPainterPath ellipse;
        ellipse.addEllipse(QRectF(-3.3, 2.2, 30.7, 19.1));
        QTest::newRow("ellipse over the edge") << ellipse << false;
        QTest::newRow("thin line") << rectangle(3, 10.25, 20, 0.5) << false;
        QTest::newRow("inside one pixel") << rectangle(5.25, 5.25, 0.5, 0.5) << false;
        QTest::newRow("off the canvas") << rectangle(-20, -20, 10, 15) << false;
        QPainterPath far;
        far.addPolygon(QPolygonF({{-50000, -40007}, {70000, 56021}, {30000, 90000}, {-90000, 4e7}}));
        QTest::newRow("corners beyond what QPainter draws") << far << false;
        for (uint64_t seed = 1; seed <= 12; ++seed) {
            const int number = static_cast<int>(seed);
            QTest::addRow("star %d", number) << randomOutline(seed, 37, Corners::byAngle) << false;
            QTest::addRow("tangle %d", number) << randomOutline(seed, 37, Corners::anywhere) << true;
        }
    }
    void shapesCoverTheirArea() {
        QFETCH(QPainterPath, path);
        QFETCH(bool, crossesItself);
        constexpr int kSize = 37; // no multiple of 4: rows of the mask are not padded
        const auto outlines = finePolygons(path);
        const auto soft = covered(path, Antialias::yes, kSize, kSize);
        const auto hard = covered(path, Antialias::no, kSize, kSize);
        double worst = 0;
        int disputed = 0;
        for (int y = 0; y < kSize; ++y) {
            const auto row = areaOfRow(outlines, y, kSize);
            for (int x = 0; x < kSize; ++x) {
                const auto i = static_cast<std::size_t>(y * kSize + x);
                const double area = row[static_cast<std::size_t>(x)];
                // Where an outline crosses itself the area within the pixel of the crossing is only a guess.
                if (!crossesItself || area < 0.1 || area > 254.9)
                    worst = std::max(worst, std::fabs(soft[i] - area));
                QVERIFY(hard[i] == 0 || hard[i] == 255);
                // A centre within 1/32 of an edge may fall either way.
                const double d = 1.0 / 32;
                const bool inside = centreIsInside(outlines, x + 0.5, y + 0.5);
                bool clear = true;
                for (double dx : {-d, d}) {
                    for (double dy : {-d, d}) {
                        clear = clear && centreIsInside(outlines, x + 0.5 + dx, y + 0.5 + dy) == inside;
                    }
                }
                if (!clear) {
                    ++disputed;
                } else {
                    QVERIFY2(hard[i] == (inside ? 255 : 0), qPrintable(QString("%1,%2").arg(x).arg(y)));
                }
            }
        }
        QVERIFY2(worst < 6, qPrintable(QString::number(worst)));
        QVERIFY(disputed < kSize * 4);
    }

    void theBandsOfATallMaskDoNotShow() {
        // The same outline on both sides of row 1024, where a new band begins.
        const QPainterPath shape = randomOutline(77, 30, Corners::anywhere);
        const auto low = covered(shape.translated(0, 10), Antialias::yes, 33, 64);
        const auto high = covered(shape.translated(0, 1010), Antialias::yes, 33, 1064);
        QVERIFY(std::equal(low.begin(), low.end(), high.end() - 33 * 64));
        QVERIFY(std::all_of(high.begin(), high.end() - 33 * 64, [](uint8_t byte) { return byte == 0; }));
    }

    void pathsFarOutsideAreCutAtTheCanvas() {
        for (Antialias antialias : {Antialias::no, Antialias::yes}) {
            const auto all = covered(rectangle(-1e7, -1e7, 2e7, 2e7), antialias, 40, 30);
            QVERIFY(std::all_of(all.begin(), all.end(), [](uint8_t byte) { return byte == 255; }));
            const auto half = covered(rectangle(-1e6, -1e6, 1e6 + 20, 2e6), antialias, 40, 30);
            for (int x = 0; x < 40; ++x)
                QCOMPARE(int(half[29 * 40 + static_cast<std::size_t>(x)]), x < 20 ? 255 : 0);
        }
        QPainterPath line;
        line.moveTo(3, 3);
        line.lineTo(20, 9);
        for (const QPainterPath& nothing : {QPainterPath(), line}) {
            const auto none = covered(nothing, Antialias::yes, 30, 30);
            QVERIFY(std::all_of(none.begin(), none.end(), [](uint8_t byte) { return byte == 0; }));
        }
    }
};

QIRN_TEST(tst_PathCoverage)
#include "tst_PathCoverage.moc"

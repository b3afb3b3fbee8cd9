#include "core/SeededRandom.h"
#include "platform/PathCoverage.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <algorithm>
#include <cmath>

#include <QTransform>

using namespace qirn;
using namespace qirn::test;

namespace {

bool isInside(const QList<QPolygonF>& outlines, double x, double y) {
    int winding = 0;
    for (const QPolygonF& outline : outlines) {
        for (qsizetype i = 0; i < outline.size(); ++i) {
            const QPointF a = outline[i], b = outline[(i + 1) % outline.size()];
            if ((a.y() <= y) == (b.y() <= y)) continue;
            if (a.x() + (b.x() - a.x()) * ((y - a.y()) / (b.y() - a.y())) <= x)
                winding += a.y() < b.y() ? 1 : -1;
        }
    }
    return winding != 0;
}

/// The covered part of a pixel, from 0 to 255, by 32 x 32 points in it.
double areaOf(const QList<QPolygonF>& outlines, int x, int y) {
    int hits = 0;
    for (int i = 0; i < 1024; ++i)
        hits += isInside(outlines, x + (i % 32 + 0.5) / 32, y + (i / 32 + 0.5) / 32);
    return hits * 255 / 1024.0;
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

void checkArea(const char* what, const QPainterPath& path, bool crossesItself = false) {
    constexpr int kSize = 37; // no multiple of 4: rows of the mask are not padded
    const auto outlines = finePolygons(path);
    const auto soft = covered(path, Antialias::yes, kSize, kSize);
    const auto hard = covered(path, Antialias::no, kSize, kSize);
    int disputed = 0;
    for (int i = 0; i < kSize * kSize; ++i) {
        const int x = i % kSize, y = i / kSize;
        const double area = areaOf(outlines, x, y);
        const auto softly = soft[static_cast<std::size_t>(i)], hardly = hard[static_cast<std::size_t>(i)];
        // Where an outline crosses itself the area within the pixel of the crossing is only a guess.
        if (!crossesItself || area < 0.1 || area > 254.9) QVERIFY2(std::fabs(softly - area) < 8, what);
        // A center within 1/32 of an edge may fall either way.
        int near = 0;
        for (int corner = 0; corner < 4; ++corner)
            near += isInside(outlines, x + 0.5 + (corner % 2 - 0.5) / 16, y + 0.5 + (corner / 2 - 0.5) / 16);
        disputed += near % 4 != 0;
        QVERIFY2(hardly == 255 * (near / 4) || (near % 4 != 0 && hardly == 255), what);
    }
    QVERIFY2(disputed < kSize * 4, what);
}

} // namespace

class tst_PathCoverage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shapesCoverTheirArea() {
        QPainterPath ellipse, far;
        ellipse.addEllipse(QRectF(-3.3, 2.2, 30.7, 19.1));
        far.addPolygon(QPolygonF({{-50000, -40007}, {70000, 56021}, {30000, 90000}, {-90000, 4e7}}));
        checkArea("ellipse over the edge", ellipse);
        checkArea("thin line", rectangle(3, 10.25, 20, 0.5));
        checkArea("inside one pixel", rectangle(5.25, 5.25, 0.5, 0.5));
        checkArea("off the canvas", rectangle(-20, -20, 10, 15));
        checkArea("corners beyond what QPainter draws", far);
        for (uint64_t seed = 1; seed <= 12; ++seed) {
            const QByteArray number = QByteArray::number(static_cast<int>(seed));
            checkArea(("star " + number).constData(), randomOutline(seed, 37, Corners::byAngle));
            checkArea(("tangle " + number).constData(), randomOutline(seed, 37, Corners::anywhere), true);
        }
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

#include "operations/ShapePath.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

QPainterPath shape(ShapeKind kind, QPointF a, QPointF b, Constrain constrain = Constrain::no) {
    return shapePath(kind, a, b, constrain, 6).value();
}

QPointF endOf(const QPainterPath& path) {
    return path.elementAt(path.elementCount() - 1);
}

bool isNear(QPointF a, QPointF b) {
    return std::hypot(a.x() - b.x(), a.y() - b.y()) < 1e-9;
}

/// The pixel of a rendered shape at a place on the canvas.
PixelBytes at(const PlacedPixels& pixels, int64_t x, int64_t y) {
    return pixels.buffer->pixel(x - pixels.rect.x, y - pixels.rect.y);
}

double distanceToSegment(QPointF p, QPointF a, QPointF b) {
    const QPointF way = b - a;
    const double t = std::clamp(QPointF::dotProduct(p - a, way) / QPointF::dotProduct(way, way), 0.0, 1.0);
    const QPointF off = p - (a + t * way);
    return std::hypot(off.x(), off.y());
}

} // namespace

class tst_Shapes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boxesFillTheDragWhicheverWayItWent() {
        for (ShapeKind kind : {ShapeKind::rectangle, ShapeKind::roundedRect, ShapeKind::ellipse}) {
            for (const auto& [a, b] : {std::pair{QPointF(10, 20), QPointF(50, 40)},
                                       {QPointF(50, 40), QPointF(10, 20)},
                                       {QPointF(50, 20), QPointF(10, 40)}}) {
                QCOMPARE(shape(kind, a, b).boundingRect(), QRectF(10, 20, 40, 20));
            }
        }
        const QPainterPath rounded = shape(ShapeKind::roundedRect, {0, 0}, {200, 100});
        const double r = 18; // 0.18 of 100
        const double inside = r - r * std::sqrt(0.5) + 0.1;
        QVERIFY(rounded.contains(QPointF(inside, inside)));
        QVERIFY(!rounded.contains(QPointF(inside - 0.2, inside - 0.2)));
        QVERIFY(rounded.contains(QPointF(r, 0.01)) && !rounded.contains(QPointF(r - 4, 0.1)));
        // Constrained they are square on the side of the drag; neither up nor down counts as down.
        for (const auto& [b, square] : {std::pair{QPointF(130, 110), QRectF(100, 100, 30, 30)},
                                        {{90, 60}, {60, 60, 40, 40}},
                                        {{90, 170}, {30, 100, 70, 70}},
                                        {{120, 100}, {100, 100, 20, 20}}})
            QCOMPARE(shape(ShapeKind::rectangle, {100, 100}, b, Constrain::yes).boundingRect(), square);
    }

    void starsAndHexagonsStandOnTheirTip() {
        const double pi = std::acos(-1);
        for (const auto& [kind, n] : {std::pair{ShapeKind::star, 10}, {ShapeKind::polygon, 6}}) {
            const QPainterPath path = shape(kind, {0, 0}, {200, 100});
            QCOMPARE(path.elementCount(), n + 1); // closed
            for (int i = 0; i <= n; ++i) {
                const double angle = 2 * pi * i / n - pi / 2, k = n == 10 && i % 2 ? 0.45 : 1;
                QVERIFY(isNear(path.elementAt(i),
                               QPointF(100 + std::cos(angle) * 100 * k, 50 + std::sin(angle) * 50 * k)));
            }
        }
    }

    void constrainedLinesKeepLengthAndEighths() {
        const double radian = std::acos(-1) / 180;
        for (const auto& [degrees, snapped] : {std::pair{22.0, 0.0},
                                               {23.0, 45.0},
                                               {68.0, 90.0},
                                               {130.0, 135.0},
                                               {-170.0, 180.0},
                                               {-23.0, -45.0}}) {
            const QPointF a(7, 9), wanted(std::cos(snapped * radian), std::sin(snapped * radian));
            const QPointF b = a + 50 * QPointF(std::cos(degrees * radian), std::sin(degrees * radian));
            QVERIFY(isNear(endOf(shape(ShapeKind::line, a, b, Constrain::yes)), a + 50 * wanted));
            QVERIFY(isNear(shape(ShapeKind::arrow, a, b, Constrain::yes).elementAt(1), a + 50 * wanted));
        }
    }

    void anArrowsHeadPointsBack() {
        // No shorter than 10 pixels.
        for (const auto& [b, width] : {std::pair{QPointF(90, 50), 6}, {QPointF(-90, 10), 1}}) {
            const QPointF a(10, 20);
            const QPainterPath path = *shapePath(ShapeKind::arrow, a, b, Constrain::no, width);
            const double t = std::atan2(b.y() - a.y(), b.x() - a.x()), h = std::max(4 * width, 10);
            QVERIFY(path.elementCount() == 5 && path.elementAt(2).isMoveTo());
            QVERIFY(isNear(path.elementAt(3), b));
            for (const int side : {-1, 1})
                QVERIFY(isNear(path.elementAt(3 + side),
                               b - h * QPointF(std::cos(t + side * 0.45), std::sin(t + side * 0.45))));
        }
    }

    void aDragOfLessThanAPixelIsNoShape() {
        for (const ShapeRow& row : kShapes) {
            QVERIFY(!shapePath(row.kind, {5, 5}, {5.9, 4.2}, Constrain::no, 6));
            QVERIFY(!shapePath(row.kind, {5, 5}, {5, 5}, Constrain::yes, 6));
            QVERIFY(!shapePath(row.kind, {5, 5}, {std::nan(""), 5}, Constrain::no, 6));
            QVERIFY(shapePath(row.kind, {5, 5}, {5, 6}, Constrain::no, 6));
        }
    }

    void outlinesAreRoundAtEndsAndCorners() {
        const QPointF places[] = {{10, 12}, {50, 12}, {50, 40}};
        QPainterPath path(places[0]);
        path.lineTo(places[1]);
        path.lineTo(places[2]);
        const auto drawn = renderShape(path, {}, PaintColor::black(), 6, Antialias::yes);
        double worst = 0;
        for (int64_t i = 0; i < drawn->rect.w * drawn->rect.h; ++i) {
            const int64_t x = drawn->rect.x + i % drawn->rect.w, y = drawn->rect.y + i / drawn->rect.w;
            int hits = 0; // of 32 x 32 points
            for (int k = 0; k < 1024; ++k) {
                const QPointF p(double(x) + (k % 32 + 0.5) / 32, double(y) + (k / 32 + 0.5) / 32);
                hits += std::min(distanceToSegment(p, places[0], places[1]),
                                 distanceToSegment(p, places[1], places[2])) <= 3;
            }
            worst = std::max(worst, std::fabs(at(*drawn, x, y)[3] - 255.0 * hits / 1024));
        }
        QVERIFY2(worst < 6, qPrintable(QString::number(worst)));
    }

    void theOutlineLiesOnTheFill() {
        const auto both = renderShape(rectangle(10, 10, 20, 20), PaintColor(1, 0, 0, 0.5),
                                      PaintColor(0, 0, 1, 0.5), 4, Antialias::yes);
        QCOMPARE(at(*both, 20, 20), (PixelBytes{128, 0, 0, 128}));
        QCOMPARE(at(*both, 9, 20), (PixelBytes{0, 0, 128, 128}));
        const PixelBytes over = at(*both, 11, 20); // half blue over half red
        QVERIFY2(std::abs(over[0] - 64) <= 1 && over[2] == 128 && std::abs(over[3] - 191) <= 1,
                 qPrintable(text(over)));
        QCOMPARE(at(*both, 7, 20), PixelBytes{});
    }

    void onlyShapesOfSaneSizeAreDrawn() {
        const PaintColor black = PaintColor::black();
        for (const QPainterPath& path :
             {rectangle(0, 0, 39'996, 5), rectangle(0, 0, 5, 1e12), rectangle(1e17, 0, 5, 5)})
            QVERIFY(!renderShape(path, black, {}, 0, Antialias::yes)); // with its margin of 2
        QVERIFY(!renderShape(rectangle(0, 0, 5, 5), black, black, 1e9, Antialias::yes));
        const auto widest = renderShape(rectangle(-3, -2, 39'995, 5), black, black, 0, Antialias::yes);
        QCOMPARE(widest->rect, (IRect{-5, -4, 39'999, 9}));
        for (int64_t x = -3; x < 39'992; ++x) QCOMPARE(at(*widest, x, 2)[3], uint8_t{255});
        QCOMPARE(at(*widest, 39'992, 2), PixelBytes{});
    }
};

QIRN_TEST(tst_Shapes)
#include "tst_Shapes.moc"

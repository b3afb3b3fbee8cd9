#include "platform/Parallel.h"
#include "platform/resample/Resampler.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>
#include <limits>

using namespace qirn;
using namespace qirn::test;

namespace {

PixelView viewOf(const RGBABuffer& b) {
    return {b.data(), b.width(), b.height(), b.width() * 4};
}

/// The target pixels of a rectangle.
std::shared_ptr<RGBABuffer> drawn(const RGBABuffer& source, const QTransform& t, const IRect& rect) {
    auto out = std::make_shared<RGBABuffer>(rect.w, rect.h);
    out->fill(PaintColor::white()); // every pixel must be written
    Resampler(viewOf(source), t).draw(rect.x, rect.y, rect.w, rect.h, out->data());
    return out;
}

/// About the middle of a picture, which comes to lie at `center`.
QTransform turned(const RGBABuffer& source, QPointF center, double degrees, double scaleX, double scaleY) {
    QTransform t;
    t.translate(center.x(), center.y());
    t.rotate(degrees);
    t.scale(scaleX, scaleY);
    t.translate(-static_cast<double>(source.width()) / 2, -static_cast<double>(source.height()) / 2);
    return t;
}

double cubic(double t) {
    t = std::fabs(t);
    return t < 1 ? 1.5 * t * t * t - 2.5 * t * t + 1 : t < 2 ? -0.5 * t * t * t + 2.5 * t * t - 4 * t + 2 : 0;
}

/// One target pixel by the definition: every source pixel weighted by its distance along both axes.
std::array<double, 4> byDefinition(const RGBABuffer& source, const QTransform& t, int64_t x, int64_t y) {
    const QTransform back = t.inverted();
    const QPointF at = back.map(QPointF(double(x) + 0.5, double(y) + 0.5)) - QPointF(0.5, 0.5);
    const double wx = std::max(1.0, std::hypot(back.m11(), back.m21()));
    const double wy = std::max(1.0, std::hypot(back.m12(), back.m22()));
    std::array<double, 4> sum{};
    double all = 0;
    for (int64_t sy = int64_t(std::floor(at.y() - 2 * wy)); double(sy) <= at.y() + 2 * wy; ++sy) {
        for (int64_t sx = int64_t(std::floor(at.x() - 2 * wx)); double(sx) <= at.x() + 2 * wx; ++sx) {
            const double w = cubic((double(sx) - at.x()) / wx) * cubic((double(sy) - at.y()) / wy);
            const PixelBytes pixel = source.pixel(sx, sy);
            for (std::size_t c = 0; c < 4; ++c) sum[c] += w * pixel[c];
            all += w;
        }
    }
    const double back255 = 255 / std::max(sum[3] / all, 255.0);
    for (std::size_t c = 0; c < 4; ++c)
        sum[c] = std::clamp(sum[c] / all * back255, 0.0, std::clamp(sum[3] / all, 0.0, 255.0));
    return sum;
}

} // namespace

class tst_Resampler : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void movesTurnsAndMirrorsCopyEveryByte() {
        for (int i = 0; i < 10; ++i) {
            const double degrees =
                std::array{0.0, 90.0, 180.0, -90.0, 450.0}[static_cast<std::size_t>(i / 2)];
            for (const auto& [w, h] : {std::pair{300, 70}, {71, 301}, {1, 1}, {1, 600}}) {
                const auto source = noise(w, h, 7);
                // A turn about the middle of w + h odd would end between pixels.
                const double half = std::fmod(std::fabs(degrees), 180) == 90 && (w + h) % 2 ? 0.5 : 0;
                const QTransform t = turned(*source, QPointF(w / 2.0 + 40 + half, h / 2.0 - 9 + half),
                                            degrees, i % 2 ? -1 : 1, 1);
                const Resampler resampler(viewOf(*source), t);
                QVERIFY(resampler.copies());
                const IRect rect = IRect::covering(resampler.reach());
                QCOMPARE(rect.w * rect.h, int64_t{w} * h);
                const auto wanted = pictureOf(rect.w + 6, rect.h + 6, [&](int64_t x, int64_t y) {
                    const QPointF from =
                        t.inverted().map(QPointF(double(x + rect.x) - 2.5, double(y + rect.y) - 2.5));
                    return source->pixel(int64_t(std::floor(from.x())), int64_t(std::floor(from.y())));
                });
                QCOMPARE(firstDifference(*drawn(*source, t, rect.insetBy(-3)), *wanted), QString());
            }
        }
    }

    void otherTransformsFollowTheFilter() {
        const auto source = noise(40, 30, 5);
        const auto check = [&](const char* name, const QTransform& transform, double tolerance = 0.51) {
            const auto out = drawn(*source, transform, {-5, -5, 90, 80});
            double worst = 0;
            for (int64_t i = 0; i < out->byteCount(); i += 4) {
                const int64_t x = i / 4 % 90, y = i / 4 / 90;
                const auto wanted = byDefinition(*source, transform, x - 5, y - 5);
                for (std::size_t c = 0; c < 4; ++c)
                    worst = std::max(worst, std::fabs(out->pixel(x, y)[c] - wanted[c]));
            }
            QVERIFY2(worst < tolerance, name);
        };
        const auto at = [&](double degrees, double sx, double sy) {
            return turned(*source, QPointF(33.4, 29.7), degrees, sx, sy);
        };
        check("fraction of a pixel", at(0, 1, 1));
        check("larger", at(0, 1.7, 1.2));
        check("much smaller", at(0, 0.04, 0.07));
        check("mirrored", at(0, -1.3, 0.8));
        check("turned and larger", at(-77, 1.9, 1.4));
        check("turned and smaller", at(20, 0.6, 0.51));
        check("a tiny turn", at(1e-7, 1.5, 1.5));
        check("sheared", QTransform(1, 0.2, 0.3, 1.1, 3, 4));
        check("turned and much smaller", at(40, 0.2, 0.3), 8); // reduced before it is turned
    }

    void theSameBytesInAnyPiecesAndOnAnyThreads() {
        const auto source = noise(90, 130, 2);
        for (double degrees : {0.0, 90.0, 23.0}) {
            for (double scale : {0.2, 1.0, 2.6}) {
                const QTransform t = turned(*source, QPointF(200.25, 170.5), degrees, scale, scale);
                const auto whole = drawn(*source, t, {0, 0, 420, 350});
                setConcurrency(1);
                QCOMPARE(firstDifference(*drawn(*source, t, {0, 0, 420, 350}), *whole), QString());
                setConcurrency(0);
                const IRect part{131, 77, 200, 201};
                const auto piece = drawn(*source, t, part);
                for (int64_t y = 0; y < part.h; ++y) {
                    QVERIFY(std::equal(piece->row(y), piece->row(y) + part.w * 4,
                                       whole->row(part.y + y) + part.x * 4));
                }
            }
        }
    }

    void hostileTransformsDrawNothingAndEndSoon() {
        const double none = std::numeric_limits<double>::quiet_NaN(),
                     endless = std::numeric_limits<double>::infinity();
        const auto source = noise(50, 50, 1);
        for (const QTransform& transform :
             {QTransform(none, 0, 0, 1, 0, 0), QTransform(1, 0, 0, 1, none, 0),
              QTransform(1, 0, 0, 1, endless, 0), QTransform(endless, 0, 0, endless, 0, 0),
              QTransform(0, 0, 0, 1, 5, 5), QTransform(1, 1, 1, 1, 5, 5),
              QTransform(1e300, 0, 0, 1e300, 0, 0), QTransform(1e-300, 0, 0, 1e-300, 5, 5),
              QTransform(1, 0, 0, 1, 1e17, 0), QTransform(1, 0, 0.01, 0, 1, 0, 0, 0, 1)}) {
            const auto out = drawn(*source, transform, {-100, -100, 200, 200});
            QVERIFY(std::all_of(out->bytes().begin(), out->bytes().end(),
                                [](uint8_t byte) { return byte == 0; }));
            QVERIFY(!Resampler(viewOf(*source), transform).reach().intersects(QRectF(-100, -100, 200, 200)));
        }
    }
};

QIRN_TEST(tst_Resampler)
#include "tst_Resampler.moc"

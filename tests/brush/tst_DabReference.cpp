#include "brush/DabStamp.h"
#include "brush/PaperGrain.h"
#include "core/SeededRandom.h"
#include "platform/Trigonometry.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>
#include <numbers>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A second, plain implementation of dabs: pixel by pixel over the whole canvas, on plain buffers.
class PlainStamp {
public:
    PlainStamp(const Layer& layer, const Selection* selection, const BrushSettings& brush,
               const PaintColor& color)
        : before_(layer.toBuffer()),
          pixels(before_->copy()),
          selection_(selection),
          brush_(brush),
          keepsAlpha_(layer.alphaLocked),
          color_{static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b)},
          mask_(static_cast<std::size_t>(pixels->width() * pixels->height())) {}

    void stamp(const Dab& dab) {
        for (int64_t y = 0; y < pixels->height(); ++y) {
            if (std::abs(static_cast<double>(y) - dab.cy) > dab.radius + 10) continue;
            for (int64_t x = 0; x < pixels->width(); ++x) {
                const double c = coverage(dab, x, y);
                if (!(c > 0)) continue;
                float& mask = mask_[static_cast<std::size_t>(y * pixels->width() + x)];
                const auto target = static_cast<float>(c * dab.ceiling);
                if (mask >= target) continue;
                mask = mask + (target - mask) * static_cast<float>(dab.flow);
                write(x, y, mask);
            }
        }
    }

private:
    std::shared_ptr<RGBABuffer> before_; // initialized first

public:
    std::shared_ptr<RGBABuffer> pixels;

private:
    double coverage(const Dab& dab, int64_t px, int64_t py) const {
        const double r = std::max(dab.radius, 0.5);
        const double left = std::floor(dab.cx - r - 1), top = std::floor(dab.cy - r - 1),
                     side = std::ceil(2 * r + 3);
        const auto x = static_cast<double>(px), y = static_cast<double>(py);
        if (x < left || y < top || x >= left + side || y >= top + side) return 0;
        const double dx = x + 0.5 - dab.cx, dy = y + 0.5 - dab.cy;
        double q = dx * dx + dy * dy;
        if (dab.roundness < 0.999) {
            const auto [sine, cosine] = sineCosine(dab.angle * std::numbers::pi / 180);
            const double u = cosine * dx + sine * dy;
            const double v = 1 / std::max(dab.roundness, 0.05) * (cosine * dy - sine * dx);
            q = u * u + v * v;
        }
        if ((r + 1) * (r + 1) < q) return 0;
        const double dist = std::sqrt(q);
        double c = 1;
        if (dab.hardness >= 0.99 || r < 1.5) {
            c = std::min(r - dist + 0.5, 1.0);
        } else if (dist >= r) {
            return 0;
        } else if (dist > r * dab.hardness) {
            const double t = (dist - r * dab.hardness) / (r - r * dab.hardness);
            c = 1 - t * t * (3 - 2 * t);
        }
        if (c <= 0) return 0;
        if (dab.textured) {
            const auto gx = static_cast<int64_t>(x / brush_.textureScale) % 256;
            const auto gy = static_cast<int64_t>(y / brush_.textureScale) % 256;
            const float g = PaperGrain::values()[static_cast<std::size_t>(gy * 256 + gx)];
            c *= static_cast<double>(1 - (1 - g) * static_cast<float>(brush_.texture));
        }
        if (selection_) c *= selection_->value(px, py) / 255.0;
        return c;
    }

    void write(int64_t x, int64_t y, float raised) {
        const PixelBytes b = before_->pixel(x, y);
        const float a = b[3], k = 1 - raised;
        const float paintAlpha = raised * 255 + k * a;
        uint8_t* out = pixels->row(y) + x * 4;
        const bool erases = brush_.kind == BrushKind::erase;
        if (!erases && keepsAlpha_ && b[3] == 0) return;
        for (std::size_t c = 0; c < 3; ++c) {
            const float v = b[c];
            const float value = erases        ? k * v
                                : keepsAlpha_ ? std::min(v + raised * (color_[c] * a - v), a)
                                              : std::min(k * v + raised * (color_[c] * 255), paintAlpha);
            out[c] = static_cast<uint8_t>(value + 0.5f);
        }
        if (erases)
            out[3] = static_cast<uint8_t>(k * a + 0.5f);
        else if (!keepsAlpha_)
            out[3] = static_cast<uint8_t>(std::min(paintAlpha + 0.5f, 255.0f));
    }

    const Selection* selection_;
    const BrushSettings& brush_;
    const bool keepsAlpha_;
    const std::array<float, 3> color_;
    std::vector<float> mask_;
};

/// Dabs of every shape and size, many of them on the seams of tiles or over the edge of the canvas.
Dab randomDab(SeededRandom& random) {
    Dab dab;
    dab.cx = -20 + 340 * random.unit();
    dab.cy = -20 + 320 * random.unit();
    if (random.unit() < 0.3) dab.cx = std::round(dab.cx) + (random.unit() < 0.5 ? 0.5 : 0);
    if (random.unit() < 0.3) dab.cy = std::round(dab.cy) + (random.unit() < 0.5 ? 0.5 : 0);
    const double kind = random.unit();
    dab.radius = kind < 0.3 ? 3 * random.unit() : kind < 0.9 ? 40 * random.unit() : 200 * random.unit();
    if (random.unit() < 0.2) dab.radius = std::round(dab.radius) / 2;
    dab.hardness = std::clamp(1.3 * random.unit() - 0.1, 0.0, 1.0);
    dab.ceiling = random.unit() < 0.3 ? 1 : random.unit();
    dab.flow = random.unit() < 0.3 ? 1 : std::max(random.unit(), 0.005);
    dab.angle = 360 * random.signedUnit();
    dab.roundness = random.unit() < 0.5 ? 1 : std::max(random.unit(), 0.05);
    dab.textured = random.unit() < 0.4;
    return dab;
}

} // namespace

class tst_DabReference : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dabsEqualThePlainRules() {
        for (int bits = 0; bits < 16; ++bits) compareDabs(bits & 1, bits & 2, bits & 4, bits & 8);
    }

private:
    static void compareDabs(bool erases, bool keepsAlpha, bool selected, bool onPaint) {
        SeededRandom random(17);
        PaintDocument doc(300, 280, 72, std::nullopt);
        Layer& layer = doc.layer(0);
        if (onPaint) {
            // Any bytes, also those that are no valid pixel, as a file may bring them.
            RGBABuffer bytes(300, 280);
            for (int64_t i = 0; i < bytes.byteCount(); ++i) {
                bytes.data()[i] = random.unit() < 0.1 ? 0 : static_cast<uint8_t>(random.next() >> 40);
            }
            layer.load(bytes);
        }
        layer.freezeTiles();
        layer.alphaLocked = keepsAlpha;
        if (selected) {
            doc.selection = selectionOf(300, 280, [&](int64_t, int64_t) {
                return random.unit() < 0.2 ? 0 : static_cast<uint8_t>(random.next());
            });
        }
        BrushSettings brush(QStringLiteral("B"), QStringLiteral("C"),
                            erases ? BrushKind::erase : BrushKind::paint);
        brush.texture = 0.7;
        brush.textureScale = 0.25 + 3.75 * random.unit();
        const PaintColor color(0.75, 0.123, 1, 1);
        DabStamp stamp(doc, layer, brush, color);
        PlainStamp plain(layer, doc.selection.get(), brush, color);
        std::vector<Dab> together; // one by one, or several of one pen point
        for (int i = 0; i < 150; ++i) {
            together.push_back(randomDab(random));
            plain.stamp(together.back());
            if (random.unit() < 0.3 || i % 25 == 24) {
                stamp.stamp(together);
                together.clear();
            }
            if (i % 25 != 24) continue;
            const QString difference = firstDifference(*layer.toBuffer(), *plain.pixels);
            const char* const how = erases ? "erases" : "paints";
            QVERIFY2(difference.isEmpty(),
                     qPrintable(QString("%1, dab %2 %3").arg(how).arg(i).arg(difference)));
        }
        // A fingerprint counts whole tiles, also what lies beyond the canvas edge.
        const uint8_t* right = layer.tile(1)->pixels();
        for (int i = 0; i < kTilePixels; ++i) {
            if (i % kTileSize >= 300 - kTileSize) QCOMPARE(right[i * 4 + 3], 0);
        }
    }
};

QIRN_TEST(tst_DabReference)
#include "tst_DabReference.moc"

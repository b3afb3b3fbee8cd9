#include "PaintReference.h"
#include "operations/Gradient.h"
#include "platform/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

/// The whole gradient over a plain buffer, pixel by pixel.
void simpleGradient(RGBABuffer& buffer, const Selection* selection, bool locked, const QPointF& from,
                    const QPointF& to, GradientKind kind, const PaintColor& start, const PaintColor& end,
                    double opacity) {
    const double dx = to.x() - from.x(), dy = to.y() - from.y();
    const double len2 = std::max(dx * dx + dy * dy, 1e-9);
    const double startRgb[] = {start.r, start.g, start.b}, endRgb[] = {end.r, end.g, end.b};
    for (int64_t y = 0; y < buffer.height(); ++y) {
        for (int64_t x = 0; x < buffer.width(); ++x) {
            const float s = selection ? selection->value(x, y) / 255.0f : 1;
            const double u = x + 0.5 - from.x(), v = y + 0.5 - from.y();
            double t = kind == GradientKind::radial ? std::sqrt(u * u + v * v) / std::sqrt(len2)
                                                    : (dx * u + dy * v) / len2;
            if (kind == GradientKind::reflected) t = std::abs(t);
            t = std::clamp(t, 0.0, 1.0);
            const double a = start.a + (end.a - start.a) * t;
            if (s == 0 || a <= 0) continue;
            std::array<float, 3> color;
            for (std::size_t c = 0; c < 3; ++c) {
                const double first = startRgb[c] * start.a;
                color[c] = static_cast<float>((first + (endRgb[c] * end.a - first) * t) / a);
            }
            layOnPixel(buffer.row(y) + x * 4, color, s * static_cast<float>(a * opacity), locked);
        }
    }
}

std::unique_ptr<PaintDocument> emptyPicture(int64_t width, int64_t height) {
    return std::make_unique<PaintDocument>(width, height, 72, std::nullopt);
}

uint8_t redAt(const PaintDocument& doc, int64_t x, int64_t y) {
    return doc.activeLayer().pixel(x, y)[0];
}

constexpr auto linear = GradientKind::linear, radial = GradientKind::radial,
               reflected = GradientKind::reflected;

} // namespace

class tst_Gradient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void everyPixelFollowsTheRules_data() {
        QTest::addColumn<GradientKind>("kind");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<double>("startAlpha");
        QTest::addColumn<double>("endAlpha");
        QTest::addColumn<double>("opacity");
        QTest::addColumn<std::string>("instructions");
        for (const std::string& name : instructionSets()) {
            for (const GradientKindRow& row : kGradientKinds) {
                for (int i = 0; i < 16; ++i) {
                    QTest::addRow("%s, %s %d", name.c_str(), row.id, i)
                        << row.kind << (i % 2 == 1) << (i / 2 % 2 == 1) << (i < 8 ? 0.9 : 1.0)
                        << (i / 4 % 2 == 1 ? 0.0 : 1.0) << (i % 3 == 0 ? 1.0 : 0.43) << name;
                }
            }
        }
    }
    void everyPixelFollowsTheRules() {
        QFETCH(GradientKind, kind);
        QFETCH(bool, selected);
        QFETCH(bool, locked);
        QFETCH(double, startAlpha);
        QFETCH(double, endAlpha);
        QFETCH(double, opacity);
        QFETCH(std::string, instructions);
        useInstructionSet(instructions);
        constexpr int64_t w = 600, h = 300;
        const auto doc = emptyPicture(w, h);
        doc->activeLayer().load(*noise(w, h, 11));
        doc->activeLayer().alphaLocked = locked;
        if (selected) doc->selection = patchySelection(w, h, 2);
        const PaintColor start(0.95, 0.2, 0.61, startAlpha), end(0.1, 0.75, 0.3, endAlpha);
        const QPointF from(120.3, 250), to(390, 71.75);
        const auto wanted = doc->activeLayer().toBuffer();
        simpleGradient(*wanted, doc->selection.get(), locked, from, to, kind, start, end, opacity);
        doc->takeDirtyTiles();
        QCOMPARE(gradientFill(*doc, from, to, kind, start, end, opacity),
                 selected ? doc->selection->bounds() : doc->grid().bounds());
        QCOMPARE(doc->takeDirtyTiles().size(), std::size_t{6});
        QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *wanted), QString());
    }

    void aDragOfNoLength() {
        for (const auto& [from, centre] : {std::pair{QPointF(60, 40), 255}, {QPointF(60.5, 40.5), 0}}) {
            const auto doc = emptyPicture(100, 80);
            for (GradientKind kind : {linear, reflected}) {
                fillWith(*doc, {9, 9, 9, 255});
                gradientFill(*doc, from, from, kind, PaintColor::black(), PaintColor::white(), 1);
                QVERIFY(redAt(*doc, 0, 0) == 0 && redAt(*doc, 60, 40) == 0 && redAt(*doc, 99, 79) == 0);
            }
            gradientFill(*doc, from, from, radial, PaintColor::black(), PaintColor::white(), 1);
            QCOMPARE(redAt(*doc, 59, 40), uint8_t{255});
            QCOMPARE(int(redAt(*doc, 60, 40)), centre); // the start shows where it is a pixel's centre
        }
    }

    void tilesOutsideTheSelectionAreNotMade() {
        const auto doc = emptyPicture(900, 10);
        std::vector<uint8_t> mask(900 * 10);
        mask.front() = mask.back() = 1;
        doc->selection = Selection::fromMask(mask, 900, 10);
        QCOMPARE(gradientFill(*doc, {0, 0}, {900, 0}, linear, PaintColor::black(), PaintColor::white(), 1),
                 doc->grid().bounds());
        const Layer& layer = doc->activeLayer();
        QVERIFY(layer.tile(0) && !layer.tile(1) && !layer.tile(2) && layer.tile(3));
    }

    void lockedLayersAreLeftAlone() {
        const auto doc = emptyPicture(300, 300);
        doc->activeLayer().isLocked = true;
        QCOMPARE(gradientFill(*doc, {0, 0}, {9, 9}, linear, PaintColor::black(), PaintColor::white(), 1),
                 IRect());
        QVERIFY(doc->activeLayer().isEmpty() && doc->takeDirtyTiles().empty());
        doc->activeLayer().isLocked = false;
        doc->activeLayer().alphaLocked = true;
        gradientFill(*doc, {0, 0}, {9, 9}, linear, PaintColor::black(), PaintColor::white(), 1);
        QVERIFY(doc->activeLayer().tiles().holdsNothing()); // nothing there to keep the alpha of
    }

private:
    static void fillWith(PaintDocument& doc, const PixelBytes& pixel) {
        paintRect(doc, doc.activeLayer(), doc.grid().bounds(), pixel);
    }
};

QIRN_TEST(tst_Gradient)
#include "tst_Gradient.moc"

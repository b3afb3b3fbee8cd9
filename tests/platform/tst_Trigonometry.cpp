#include "core/PaintEngine.h"
#include "core/SeededRandom.h"
#include "platform/Trigonometry.h"
#include "support/TestMain.h"

#include <bit>
#include <cmath>

using namespace qirn;

namespace {

/// Distance from the exact value in units of the last place of the 64-bit result.
double unitsOff(double value, long double exact) {
    const double nearest = static_cast<double>(exact);
    const double unit = std::nextafter(std::fabs(nearest), HUGE_VAL) - std::fabs(nearest);
    return static_cast<double>(std::fabs(static_cast<long double>(value) - exact)) / unit;
}

} // namespace

class tst_Trigonometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyAngleIsWithinOneUnitAndHasTheSameBitsEverywhere() {
        SeededRandom random(3);
        double worst = 0;
        uint64_t h = PaintEngine::fnvStart;
        for (int i = 0; i < 400000; ++i) {
            double angle = (i % 2 ? 7 : 1e6) * random.signedUnit(); // a circle, and the promised range
            if (i % 8 < 2)
                angle = std::round(angle) * 3.14159265358979323846 /
                        2; // near multiples of pi: the hardest and most common
            const SineCosine sc = sineCosine(angle);
            worst = std::max(worst, unitsOff(sc.sine, std::sin(static_cast<long double>(angle))));
            worst = std::max(worst, unitsOff(sc.cosine, std::cos(static_cast<long double>(angle))));
            for (double value : {sc.sine, sc.cosine})
                h = PaintEngine::fnvStep(h, std::bit_cast<uint64_t>(value));
        }
        QVERIFY2(worst <= 1, qPrintable(QString::number(worst)));
        QCOMPARE(h, uint64_t{0x395CBB98F6F8E1D6});
    }
};

QIRN_TEST(tst_Trigonometry)
#include "tst_Trigonometry.moc"

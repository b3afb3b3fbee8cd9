#include "core/PaintEngine.h"
#include "core/SeededRandom.h"
#include "platform/Trigonometry.h"
#include "support/TestMain.h"

#include <cmath>
#include <cstring>

using namespace qirn;

namespace {

/// Distance from the exact value in units of the last place of the 64-bit result.
double unitsOff(double value, long double exact) {
    const double nearest = static_cast<double>(exact);
    const double unit = std::nextafter(std::fabs(nearest), HUGE_VAL) - std::fabs(nearest);
    return static_cast<double>(std::fabs(static_cast<long double>(value) - exact)) / unit;
}

uint64_t mixed(uint64_t h, double value) {
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return PaintEngine::fnvStep(h, bits);
}

} // namespace

class tst_Trigonometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyAngleIsWithinOneUnit_data() {
        QTest::addColumn<double>("range");
        QTest::newRow("a circle") << 7.0;
        QTest::newRow("the promised range") << 1e6;
    }
    void everyAngleIsWithinOneUnit() {
        QFETCH(double, range);
        SeededRandom random(3);
        double worst = 0;
        for (int i = 0; i < 200000; ++i) {
            double angle = range * random.signedUnit();
            if (i % 4 == 0) angle = std::round(angle) * 3.14159265358979323846 / 2; // hardest, and commonest
            const SineCosine sc = sineCosine(angle);
            worst = std::max(worst, unitsOff(sc.sine, std::sin(static_cast<long double>(angle))));
            worst = std::max(worst, unitsOff(sc.cosine, std::cos(static_cast<long double>(angle))));
        }
        QVERIFY2(worst <= 1, qPrintable(QString::number(worst)));
    }

    void everyMachineGivesTheSameBits() {
        SeededRandom random(9);
        uint64_t h = PaintEngine::fnvStart;
        for (int i = 0; i < 20000; ++i) {
            const SineCosine sc = sineCosine(20 * random.signedUnit());
            h = mixed(mixed(h, sc.sine), sc.cosine);
        }
        QCOMPARE(h, uint64_t{0xD42FE168F5F74CE1});
    }
};

QIRN_TEST(tst_Trigonometry)
#include "tst_Trigonometry.moc"

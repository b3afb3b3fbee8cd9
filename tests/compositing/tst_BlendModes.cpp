#include "compositing/Reference.h"
#include "core/SeededRandom.h"
#include "support/TestMain.h"

#include <set>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A premultiplied pixel with many of the values at which formulas change their branch.
std::array<float, 4> randomPixel(SeededRandom& random) {
    const uint64_t kind = random.next() % 4;
    std::array<float, 4> p{};
    const int a = kind == 0 ? 255 : kind == 1 ? 128 : static_cast<int>(random.next() % 256);
    for (std::size_t c = 0; c < 3; ++c) {
        const uint64_t draw = random.next();
        const int special[] = {0, a, a / 2, a / 4, (a + 1) / 2, 1};
        const int value =
            draw % 3 == 0 ? special[(draw >> 8) % 6] : static_cast<int>((draw >> 8) % 256) * a / 255;
        p[c] = static_cast<float>(value) * (1 / 255.0f);
    }
    if (random.next() % 8 == 0) p[1] = p[0]; // equal channels
    if (random.next() % 8 == 0) p[2] = p[1];
    p[3] = static_cast<float>(a) * (1 / 255.0f);
    return p;
}

} // namespace

class tst_BlendModes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPixelIsThatOfTheFormula() {
        for (const auto& row : kBlendModes) {
            SeededRandom random(17 + static_cast<uint64_t>(row.mode));
            for (int i = 0; i < 200000; ++i) {
                const auto backdrop = randomPixel(random), source = randomPixel(random);
                auto got = backdrop, wanted = backdrop;
                const bool atop = i % 2;
                Compositor::blendPixel(got.data(), source.data(), row.mode,
                                       atop ? Compositor::Atop::yes : Compositor::Atop::no);
                referencePixel(wanted.data(), {source[0], source[1], source[2]}, source[3], row.mode, atop);
                QVERIFY2(std::memcmp(got.data(), wanted.data(), sizeof got) == 0, row.id);
            }
        }
    }

    void everyModeIsFoundByItsNameAndItsKey() {
        std::set<std::string> keys;
        QStringList ids;
        for (int i = 0; i < kBlendModeCount; ++i) {
            const BlendModeRow& row = rowOf(BlendMode(i));
            QCOMPARE(int(row.mode), i);
            QVERIFY(blendModeWithId(row.id) == row.mode);
            QCOMPARE(blendModeFromPSD(row.psdKey), row.mode);
            keys.insert(row.psdKey);
            ids << row.id;
        }
        QCOMPARE(ids.join(' '),
                 "normal multiply screen overlay darken lighten colorDodge colorBurn hardLight softLight "
                 "difference exclusion add subtract linearBurn hue saturation color luminosity");
        QCOMPARE(keys.size(), std::size_t{kBlendModeCount});
        QVERIFY(!blendModeWithId("Multiply"));
        QCOMPARE(blendModeFromPSD("diss"), BlendMode::normal);
    }
};

QIRN_TEST(tst_BlendModes)
#include "tst_BlendModes.moc"

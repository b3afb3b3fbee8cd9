#include "compositing/Reference.h"
#include "core/SeededRandom.h"
#include "support/TestMain.h"

#include <set>

using namespace qirn;
using namespace qirn::test;

namespace {

const PixelBytes kBackdrop{200, 100, 50, 255};
const PixelBytes kSource{60, 150, 240, 255};

struct Known {
    const char* mode;
    PixelBytes result;
};
constexpr Known kKnown[] = {
    {"normal", {60, 150, 240, 255}},      {"multiply", {47, 59, 47, 255}},
    {"screen", {213, 191, 243, 255}},     {"overlay", {171, 118, 94, 255}},
    {"darken", {60, 100, 50, 255}},       {"lighten", {200, 150, 240, 255}},
    {"colorDodge", {255, 243, 255, 255}}, {"colorBurn", {21, 0, 37, 255}},
    {"hardLight", {94, 127, 231, 255}},   {"softLight", {177, 111, 106, 255}},
    {"difference", {140, 50, 190, 255}},  {"exclusion", {166, 132, 196, 255}},
    {"add", {255, 250, 255, 255}},        {"subtract", {140, 0, 0, 255}},
    {"linearBurn", {5, 0, 35, 255}},      {"hue", {64, 139, 214, 255}},
    {"saturation", {215, 95, 35, 255}},   {"color", {52, 142, 232, 255}},
    {"luminosity", {208, 108, 58, 255}},
};

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
    void everyModeGivesItsKnownColour() {
        QCOMPARE(std::size(kKnown), kBlendModes.size());
        for (int i = 0; i < kBlendModeCount; ++i) {
            QCOMPARE(int(*blendModeWithId(kKnown[i].mode)), i);
            const PixelBytes got = Compositor::blendBytes(kBackdrop, kSource, BlendMode(i), 1);
            int worst = 0;
            for (std::size_t c = 0; c < 4; ++c)
                worst = std::max(worst, std::abs(got[c] - kKnown[i].result[c]));
            QVERIFY2(worst <= 1 && got[3] == 255, kKnown[i].mode);
        }
    }

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
        for (int i = 0; i < kBlendModeCount; ++i) {
            const BlendModeRow& row = rowOf(BlendMode(i));
            QCOMPARE(int(row.mode), i);
            QVERIFY(blendModeWithId(row.id) == row.mode);
            QCOMPARE(blendModeFromPSD(row.psdKey), row.mode);
            keys.insert(row.psdKey);
        }
        QCOMPARE(keys.size(), std::size_t{kBlendModeCount});
        QVERIFY(!blendModeWithId("Multiply"));
        QCOMPARE(blendModeFromPSD("diss"), BlendMode::normal);
    }
};

QIRN_TEST(tst_BlendModes)
#include "tst_BlendModes.moc"

#include "core/SeededRandom.h"
#include "formats/common/ColorProfile.h"
#include "platform/Bytes.h"
#include "support/Profiles.h"
#include "support/TestMain.h"

#include <array>
#include <cmath>
#include <cstring>

using namespace qirn;
using namespace qirn::test;

namespace {

using Rgba = std::array<uint8_t, 4>;

template <class T> Rgba converted(const ColorProfile& profile, const std::vector<T>& pixel) {
    Rgba out{};
    profile.convert(pixel.data(), out.data(), 1);
    return out;
}

double encodedSrgb(double light) {
    return 255 * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055);
}

} // namespace

class tst_ColorProfile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void linearLightIsEncodedToTheNearestStep() {
        const ColorProfile gray = ColorProfile::standard({ColorModel::gray, SampleType::f32});
        for (int i = -10; i <= 1010; ++i) {
            const float light = static_cast<float>(i) / 1000;
            const double exact = encodedSrgb(std::clamp<double>(light, 0, 1));
            QVERIFY(std::abs(converted(gray, std::vector{light})[0] - exact) <= 0.5 + 1e-3);
        }
        for (int i = 0; i < 255; ++i) { // on either side of the threshold between two bytes
            const double v = (i + 0.5) / 255;
            const auto border =
                static_cast<float>(v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
            QCOMPARE(converted(gray, std::vector{std::nextafter(border, 0.0f)})[0], i);
            QCOMPARE(converted(gray, std::vector{std::nextafter(border, 1.0f)})[0], i + 1);
        }
        QCOMPARE(converted(gray, std::vector{std::nanf("")}), (Rgba{0, 0, 0, 255}));
    }

    void tablesGiveWhatTheLibraryComputes() {
        for (const auto& [icc, channels] :
             {std::pair{displayP3Profile(), 3}, {adobeRgbProfile(), 3}, {grayProfile(1.8), 1}}) {
            const ColorModel model = channels == 1 ? ColorModel::gray : ColorModel::rgb;
            std::vector<uint16_t> samples;
            SeededRandom random(16);
            for (int v = 0; v < 65536; ++v)
                samples.insert(samples.end(), static_cast<std::size_t>(channels), static_cast<uint16_t>(v));
            for (int i = 0; i < 300'000; ++i)
                samples.push_back(static_cast<uint16_t>((random.next() & 0xFFFF) >> random.next() % 7));
            const std::vector<uint8_t> expected = convertedByTheLibrary(icc, samples, channels);
            std::vector<uint8_t> given(expected.size());
            const auto profile = ColorProfile::embedded(bytesOf(icc), {model, SampleType::u16});
            profile->convert(samples.data(), given.data(), std::ssize(given) / 4);
            int different = 0;
            for (std::size_t i = 0; i < given.size(); ++i) {
                QVERIFY2(std::abs(given[i] - expected[i]) <= 1, qPrintable(QString::number(i)));
                different += given[i] != expected[i];
            }
            // Of the bytes whose exact value is half way between two, some go the other way.
            QVERIFY2(different <= (channels == 1 ? 0 : std::ssize(given) / 5000),
                     qPrintable(QString::number(different)));

            const auto bytes = ColorProfile::embedded(bytesOf(icc), {model});
            const auto withAlpha = ColorProfile::embedded(bytesOf(icc), {model, SampleType::u16, true});
            for (std::size_t i = 0; i < 50; ++i) {
                const auto* const pixel = samples.data() + 1301 * i * static_cast<std::size_t>(channels);
                std::vector<uint16_t> with(pixel, pixel + channels), wide;
                with.push_back(static_cast<uint16_t>(i * 1285));
                // Alpha lies beside the color and leaves it alone.
                Rgba wanted{};
                std::memcpy(wanted.data(), &given[1301 * i * 4], 3);
                wanted[3] = static_cast<uint8_t>(i * 5);
                QCOMPARE(converted(*withAlpha, with), wanted);
                // Bytes are the same colors as the words that stand for them.
                with.pop_back();
                std::vector<uint8_t> narrow;
                for (const uint16_t word : with) {
                    narrow.push_back(static_cast<uint8_t>(word >> 8));
                    wide.push_back(static_cast<uint16_t>(narrow.back() * 257));
                }
                const Rgba fromBytes = converted(*bytes, narrow), fromWords = converted(*profile, wide);
                for (std::size_t c = 0; c < 4; ++c) QVERIFY(std::abs(fromBytes[c] - fromWords[c]) <= 1);
            }
        }
    }
};

QIRN_TEST(tst_ColorProfile)
#include "tst_ColorProfile.moc"

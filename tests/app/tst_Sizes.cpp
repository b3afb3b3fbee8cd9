#include "app/sizes/CanvasLimits.h"
#include "app/sizes/NewCanvas.h"
#include "app/sizes/Proportions.h"
#include "support/TestMain.h"

#include <set>

#include <QtTest>

using namespace qirn;

class tst_Sizes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lengthsInUnitsArePixels() {
        const struct {
            double length;
            LengthUnit unit;
            double dpi;
            int64_t pixels;
        } cases[] = {{10, LengthUnit::centimeters, 300, 1181},
                     {100, LengthUnit::millimeters, 300, 1181},
                     {8.5, LengthUnit::inches, 300, 2550},
                     {1080.5, LengthUnit::pixels, 0, 1081},
                     {-0.4, LengthUnit::pixels, 72, 0},
                     {1, LengthUnit::inches, 0, 0},
                     {1e300, LengthUnit::inches, 1e9, 1'000'000'000'000'000}};
        for (const auto& [length, unit, dpi, pixels] : cases) QCOMPARE(toPixels(length, unit, dpi), pixels);
        QCOMPARE(fromPixels(100, LengthUnit::inches, 0), 0.0);
    }

    void anotherUnitAndBackChangesNothing() {
        for (const double dpi : {72.0, 299.9994, 460.0}) {
            NewCanvas canvas;
            canvas.setDpi(dpi);
            canvas.setUnit(LengthUnit::inches);
            canvas.setWidth(3.33);
            const int64_t w = canvas.pixelsW(), h = canvas.pixelsH();
            for (const LengthUnitRow& row : kLengthUnits) {
                canvas.setUnit(row.unit);
                QCOMPARE(std::pair(canvas.pixelsW(), canvas.pixelsH()), std::pair(w, h));
            }
            canvas.setUnit(LengthUnit::inches);
            QCOMPARE(canvas.width(), 3.33);
            // A side stays what it is where it is typed: inches become other pixels, pixels do not.
            canvas.setDpi(2 * dpi);
            QCOMPARE(canvas.width(), 3.33);
            QVERIFY(canvas.pixelsW() > w);
            canvas.setUnit(LengthUnit::pixels);
            const int64_t doubled = canvas.pixelsW();
            canvas.setDpi(dpi);
            QCOMPARE(canvas.pixelsW(), doubled);
        }
    }

    void presetsGiveSizeAndNameButKeepOneThatWasTyped() {
        std::set<std::string> ids;
        NewCanvas canvas;
        for (const DocPreset& preset : DocPreset::all()) {
            canvas.apply(preset);
            QCOMPARE(canvas.name, QString::fromUtf8(preset.name));
            QVERIFY(canvas.pixelsW() == preset.w && canvas.pixelsH() == preset.h);
            QCOMPARE(canvas.unit() == LengthUnit::inches, QByteArray(preset.group).startsWith("Print"));
            QVERIFY(canvas.valid() && canvas.dpi() == preset.dpi && canvas.chosen() == &preset);
            ids.insert(std::string(preset.group) + preset.name);
        }
        QCOMPARE(ids.size(), std::size_t{25});
        canvas.name = "Mine";
        canvas.apply(DocPreset::all().front());
        QCOMPARE(canvas.name, "Mine");
        canvas.swapSides();
        QVERIFY(canvas.pixelsW() == 1080 && canvas.pixelsH() == 1920);
    }

    void largeCanvasesWarnAndTooLargeOnesAreNone() {
        const auto valid = [](double w, double h, double dpi) {
            NewCanvas canvas;
            canvas.setWidth(w);
            canvas.setHeight(h);
            canvas.setDpi(dpi);
            return canvas.valid();
        };
        QVERIFY(valid(30'000, 30'000, 1) && valid(1, 1, 0.01));
        QVERIFY(!valid(30'001, 1, 72) && !valid(1, 30'001, 72) && !valid(0, 1, 72) && !valid(1, 1, 0));
        QCOMPARE(CanvasLimits::warning(8'000, 7'500), QString());
        QCOMPARE(CanvasLimits::warning(30'001, 30'000), QString());
        QCOMPARE(CanvasLimits::warning(30'000, 30'000),
                 "This is a very large canvas. Each layer uses about 3600 MB of memory.");
        QCOMPARE(CanvasLimits::warning(8'000, 7'501, 3), "This is a very large canvas. Each layer uses about "
                                                         "240 MB of memory. All 3 layers: up to 720 MB.");
    }

    void oneSideFollowsTheOtherByTheRatioFromBeforeTheTyping() {
        Proportions size;
        size.width = 1920;
        size.height = 1080;
        for (const double typed : {9.0, 96.0, 960.0}) size.setWidth(typed);
        QCOMPARE(size.height, 540.0);
        size.setHeight(0);
        size.setHeight(270);
        QCOMPARE(size.width, 480.0);
        size.setWidth(481);
        QCOMPARE(size.height, 271.0);
        size.endTyping();
        size.setWidth(962);
        QCOMPARE(size.height, 542.0); // of 271 to 481
        size.setHeight(0);
        size.endTyping();
        size.setHeight(7);
        QCOMPARE(size.width, 7.0);
        size.keep = false;
        size.setHeight(8);
        QCOMPARE(size.width, 7.0);
    }
};

QIRN_TEST(tst_Sizes)
#include "tst_Sizes.moc"

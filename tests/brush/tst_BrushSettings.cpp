#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "platform/Bytes.h"
#include "support/TestMain.h"

#include <limits>

using namespace qirn;

namespace {

std::optional<std::vector<BrushSettings>> decoded(const QByteArray& text) {
    return BrushFile::decode(bytesOf(text));
}

/// The one brush of a file of one record; a file that is refused fails the test that asks.
std::optional<BrushSettings> decodedOne(const QByteArray& record) {
    const auto list = decoded("[" + record + "]");
    if (!list || list->size() != 1) return std::nullopt;
    return list->front();
}

BrushSettings fresh() {
    return BrushSettings(QStringLiteral("Brush"), QStringLiteral("My Brushes"), BrushKind::paint);
}

} // namespace

class tst_BrushSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:

    void sanitizeMendsEveryNumber() {
        constexpr double endless = std::numeric_limits<double>::infinity();
        for (const BrushField& field : kBrushFields) {
            if (!field.number) continue;
            const double middle = (field.lower + field.upper) / 3;
            for (const auto& [given, wanted] : {std::pair{field.lower - 1, field.lower},
                                                {field.upper + 1, field.upper},
                                                {middle, middle},
                                                {std::numeric_limits<double>::quiet_NaN(), field.lower},
                                                {endless, field.lower},
                                                {-endless, field.lower}}) {
                BrushSettings brush = fresh(), rest = fresh();
                brush.*field.number = given;
                brush.sanitize();
                rest.*field.number = wanted;
                QCOMPARE(brush, rest); // and nothing else changed
            }
        }
        BrushSettings large = fresh();
        large.size = 5000;
        large.sanitize();
        QCOMPARE(large.size, 1000.0);
    }

    void aRecordMayLeaveEverythingOut() {
        const auto brush = decodedOne(R"({"name":"Old file brush","size":42})");
        BrushSettings wanted(QStringLiteral("Old file brush"), QStringLiteral("My Brushes"),
                             BrushKind::paint);
        wanted.size = 42;
        QCOMPARE(brush, wanted);
        QCOMPARE(decodedOne("{}"), fresh());
        QCOMPARE(decodedOne(R"({"size":18446744073709551615})")->size, 1000.0);
    }

    void aSettingThatCannotBeReadKeepsItsDefault() {
        for (const char* record :
             {R"({"size":"big"})", R"({"size":null})", R"({"size":true})", R"({"size":[3]})",
              R"({"airbrush":1})", R"({"airbrush":"true"})", R"({"kind":"crayon"})", R"({"kind":3})",
              R"({"kind":null})", R"({"id":null})", R"({"name":null})", R"({"category":null})",
              R"({"futureSetting":{"deep":[1,2,{"x":null}]},"K":0})"})
            QVERIFY2(decodedOne(record) == fresh(), record);
    }

    void oneBadRecordRefusesTheWholeFile() {
        QVERIFY(decoded(R"([{"name":"Good"}])"));
        for (const char* record : {R"({"name":5})", R"({"category":["a"]})", R"({"id":7})",
                                   R"({"id":"{238A507A-F3BA-443A-B3D1-B0FA438BBE72}"})",
                                   R"({"id":"238A507A-F3BA-443A-B3D1-B0FA438BBE7G"})", R"({"id":""})", "[]",
                                   "null", "3", R"({"size":1e999})", R"({"name":"a")"})
            QVERIFY2(!decoded(QByteArray(R"([{"name":"Good"},)") + record + "]"), record);
    }

    void aFileIsOneArrayAndNothingElse() {
        QCOMPARE(decoded("[]")->size(), std::size_t{0});
        for (const char* text : {"", "{}", "null", R"({"name":"One"})", "[] []", "[", "[{}"}) {
            QVERIFY2(!decoded(text), text);
        }
        const QByteArray whole = BrushFile::encode(BrushLibrary::builtIn());
        for (qsizetype length = 0; length < whole.size(); length += 97) QVERIFY(!decoded(whole.left(length)));
    }

    void aBrushComesBackFromItsFile() {
        std::vector<BrushSettings> brushes = BrushLibrary::builtIn();
        BrushSettings odd(QString::fromUtf8("Br\u00fcsh \U0001F58C \"quoted\"\n"), QStringLiteral("a/b\\c"),
                          BrushKind::blur, QUuid::createUuid());
        odd.size = 1.0 / 3;
        odd.angle = -179.99999999999997;
        odd.airbrush = odd.spray = odd.pressureFlow = true;
        odd.sanitize();
        brushes.push_back(odd);
        QCOMPARE(decoded(BrushFile::encode(brushes)), brushes);
        QCOMPARE(decodedOne(R"({"id":"238a507a-f3ba-443a-b3d1-b0fa438bbe72"})")->id,
                 QUuid(QStringLiteral("238A507A-F3BA-443A-B3D1-B0FA438BBE72")));
    }

    void aFileShowsEverySettingInOrder() {
        const std::vector<BrushSettings> one{*BrushLibrary::named(QStringLiteral("Studio Pen"))};
        const QByteArray text = BrushFile::encode(one);
        const QByteArray begin =
            "[\n  {\n    \"id\": \"238A507A-F3BA-443A-B3D1-B0FA438BBE72\",\n"
            "    \"name\": \"Studio Pen\",\n    \"category\": \"Pens\",\n    \"kind\": \"paint\",\n"
            "    \"size\": 8.0,\n    \"opacity\": 1.0,\n";
        QCOMPARE(text.left(begin.size()), begin);
        QVERIFY(text.endsWith("\"isBuiltIn\": true\n  }\n]"));
        QCOMPARE(text.count('\n'), 29 + 3);
    }

    void theLibraryHasItsPresets() {
        for (const BrushSettings& brush : BrushLibrary::builtIn()) {
            BrushSettings mended = brush;
            mended.sanitize();
            QVERIFY2(brush.isBuiltIn && mended == brush, qPrintable(brush.name)); // no number is out of range
        }
        QCOMPARE(
            BrushLibrary::categories().join(u'|'),
            QStringLiteral("Pens|Pencils|Inks|Markers|Round Brushes|Airbrush|Texture|Smudge & Blur|Erasers"));
        QVERIFY(!BrushLibrary::named(QStringLiteral("ink brush")));
    }
};

QIRN_TEST(tst_BrushSettings)
#include "tst_BrushSettings.moc"

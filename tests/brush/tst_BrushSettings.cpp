#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "platform/Json.h"
#include "support/TestMain.h"

#include <limits>
#include <set>

using namespace qirn;

namespace {

std::optional<std::vector<BrushSettings>> decoded(const QByteArray& text) {
    return BrushFile::decode(
        {reinterpret_cast<const uint8_t*>(text.constData()), static_cast<std::size_t>(text.size())});
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
    void identifiersAreTheSameOnEveryMachine() {
        QCOMPARE(BrushSettings::stableID(QStringLiteral("Pens/Studio Pen")),
                 QUuid(QStringLiteral("238A507A-F3BA-443A-B3D1-B0FA438BBE72")));
        // Without any text the two seeds stand there, but for the bits of version and variant.
        QCOMPARE(BrushSettings::stableID(QString()),
                 QUuid(QStringLiteral("25232284-E49C-42CB-A49C-F2CB25232284")));
        const BrushSettings a(QStringLiteral("Ink"), QStringLiteral("Pens"), BrushKind::paint);
        const BrushSettings b(QStringLiteral("Ink"), QStringLiteral("Inks"), BrushKind::paint);
        QVERIFY(a.id != b.id);
        QCOMPARE(a.id, BrushSettings::stableID(QStringLiteral("Pens/Ink")));
        // One letter in two spellings is two names.
        QVERIFY(BrushSettings::stableID(QString::fromUtf8("\u00e9")) !=
                BrushSettings::stableID(QString::fromUtf8("e\u0301")));
    }

    void sanitizeMendsEveryNumber_data() {
        using B = BrushSettings;
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr double inf = std::numeric_limits<double>::infinity();
        struct Row {
            const char* name;
            double B::*field;
            double given, wanted;
        };
        QTest::addColumn<double B::*>("field");
        QTest::addColumn<double>("given");
        QTest::addColumn<double>("wanted");
        for (const Row& row :
             {Row{"size 0", &B::size, 0, 1}, Row{"size 5000", &B::size, 5000, 1000},
              Row{"size nan", &B::size, nan, 1}, Row{"size inf", &B::size, inf, 1},
              Row{"size 42.5", &B::size, 42.5, 42.5}, Row{"angle nan", &B::angle, nan, -180},
              Row{"angle -inf", &B::angle, -inf, -180}, Row{"angle 270", &B::angle, 270, 180},
              Row{"textureScale inf", &B::textureScale, inf, 0.25}, Row{"flow 0", &B::flow, 0, 0.005},
              Row{"opacity 0", &B::opacity, 0, 0}, Row{"spacing -1", &B::spacing, -1, 0.02},
              Row{"roundness 0", &B::roundness, 0, 0.05}, Row{"particleSize 99", &B::particleSize, 99, 20},
              Row{"airbrushRate 0", &B::airbrushRate, 0, 1}, Row{"strength 2", &B::strength, 2, 1}}) {
            QTest::newRow(row.name) << row.field << row.given << row.wanted;
        }
    }
    void sanitizeMendsEveryNumber() {
        QFETCH(double BrushSettings::*, field);
        QFETCH(double, given);
        QFETCH(double, wanted);
        BrushSettings brush = fresh();
        brush.*field = given;
        brush.sanitize();
        QCOMPARE(brush.*field, wanted);
        BrushSettings rest = fresh();
        rest.*field = wanted;
        QCOMPARE(brush, rest); // and nothing else moved
    }

    void aRecordMayLeaveEverythingOut() {
        const auto brush = decodedOne(R"({"name":"Old file brush","size":42})");
        BrushSettings wanted(QStringLiteral("Old file brush"), QStringLiteral("My Brushes"),
                             BrushKind::paint);
        wanted.size = 42;
        QCOMPARE(brush, wanted);
        QCOMPARE(decodedOne("{}"), fresh());
    }

    void aSettingThatCannotBeReadKeepsItsDefault_data() {
        QTest::addColumn<QByteArray>("record");
        for (const char* record :
             {R"({"size":"big"})", R"({"size":null})", R"({"size":true})", R"({"size":[3]})",
              R"({"airbrush":1})", R"({"airbrush":0})", R"({"airbrush":"true"})", R"({"kind":"crayon"})",
              R"({"kind":3})", R"({"kind":null})", R"({"kind":{"a":1}})", R"({"kind":"Erase"})",
              R"({"id":null})", R"({"name":null})", R"({"category":null})",
              R"({"futureSetting":{"deep":[1,2,{"x":null}]},"K":0})"}) {
            QTest::newRow(record) << QByteArray(record);
        }
    }
    void aSettingThatCannotBeReadKeepsItsDefault() {
        QFETCH(QByteArray, record);
        QCOMPARE(decodedOne(record), fresh());
    }

    void readingEndsInSanitize() {
        QCOMPARE(decodedOne(R"({"size":-3})")->size, 1.0);
        QCOMPARE(decodedOne(R"({"spacing":1e300})")->spacing, 2.0);
        QCOMPARE(decodedOne(R"({"size":18446744073709551615})")->size, 1000.0);
    }

    void oneBadRecordRefusesTheWholeFile_data() {
        QTest::addColumn<QByteArray>("record");
        for (const char* record :
             {R"({"name":5})", R"({"name":false})", R"({"category":["a"]})", R"({"id":"nonsense"})",
              R"({"id":7})", R"({"id":"{238A507A-F3BA-443A-B3D1-B0FA438BBE72}"})",
              R"({"id":"238A507AF3BA443AB3D1B0FA438BBE72"})",
              R"({"id":"238A507A-F3BA-443A-B3D1-B0FA438BBE7G"})", R"({"id":""})", "[]", "null", "3",
              R"("text")", R"({"size":1e999})", R"({"name":"a")", R"({"name":"\ud800"})"}) {
            QTest::newRow(record) << QByteArray(record);
        }
        QTest::newRow("broken UTF-8") << QByteArray("{\"name\":\"\xff\"}");
        QTest::newRow("nested beyond reason")
            << QByteArray("{\"x\":") + QByteArray(100'000, '[') + QByteArray(100'000, ']') + "}";
    }
    void oneBadRecordRefusesTheWholeFile() {
        QFETCH(QByteArray, record);
        QVERIFY(decoded(R"([{"name":"Good"}])"));
        QVERIFY(!decoded(R"([{"name":"Good"},)" + record + "]"));
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
        const auto& list = BrushLibrary::builtIn();
        QCOMPARE(list.size(), std::size_t{33});
        std::set<QUuid> ids;
        std::map<BrushKind, int> kinds;
        for (const BrushSettings& brush : list) {
            QVERIFY2(brush.isBuiltIn, qPrintable(brush.name));
            ids.insert(brush.id);
            ++kinds[brush.kind];
            BrushSettings mended = brush;
            mended.sanitize();
            QCOMPARE(mended, brush); // no number of the table is out of range
        }
        QCOMPARE(ids.size(), list.size());
        QCOMPARE(kinds, (std::map<BrushKind, int>{{BrushKind::paint, 24},
                                                  {BrushKind::erase, 5},
                                                  {BrushKind::smudge, 2},
                                                  {BrushKind::blur, 2}}));
        QCOMPARE(
            BrushLibrary::categories().join(u'|'),
            QStringLiteral("Pens|Pencils|Inks|Markers|Round Brushes|Airbrush|Texture|Smudge & Blur|Erasers"));
        QCOMPARE(BrushLibrary::named(QStringLiteral("Ink Brush")), list[6]);
        QVERIFY(!BrushLibrary::named(QStringLiteral("ink brush")));
        QVERIFY(!BrushLibrary::named(QString()));
    }
};

QIRN_TEST(tst_BrushSettings)
#include "tst_BrushSettings.moc"

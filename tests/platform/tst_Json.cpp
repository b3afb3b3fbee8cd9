#include "platform/Bytes.h"
#include "platform/Json.h"
#include "support/TestMain.h"

using namespace qirn;

namespace {

std::optional<Json> parsed(const QByteArray& text) {
    return parseJson(bytesOf(text));
}

/// What a typed read makes of a text: the value as text, or "refused".
template <class Read> QString outcome(const QByteArray& text, Read read) {
    try {
        return QStringLiteral("%1").arg(read(*parsed(text)));
    } catch (const JsonTypeError&) {
        return QStringLiteral("refused");
    }
}

} // namespace

class tst_Json : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyWholeAndWellFormedTextIsRead() {
        for (const QByteArray& text : {QByteArray(R"({"a":[1,2.5,true,null,"x"]})"), QByteArray("7"),
                                       QByteArray(" \n{}\t"), QByteArray(32, '[') + QByteArray(32, ']')})
            QVERIFY2(parsed(text), text.constData());
        for (const QByteArray& text :
             {QByteArray(), QByteArray(R"({"a":[1,2)"), QByteArray("{\"a\":\"x"), QByteArray("{} {}"),
              QByteArray("{}\0", 3), QByteArray("[1,]"), QByteArray("/*x*/{}"), QByteArray("\"\xC3\x28\""),
              QByteArray("\"\xC0\x80\""), QByteArray(R"("\ud83d")"), QByteArray("1e999"), QByteArray("NaN"),
              QByteArray(33, '[') + QByteArray(33, ']'), QByteArray(1'000'000, '['),
              QByteArray("{\"a\":[").repeated(16) + "{}" + QByteArray("]}").repeated(16)}) // 33 deep too
            QVERIFY2(!parsed(text), text.left(40).constData());
    }

    void theLastOfTwoEqualKeysWins() {
        const auto json = parsed(R"({"a":{"x":1},"b":[1,[2],3],"a":[4,{"y":5}]})");
        QCOMPARE(json->dump(), std::string(R"({"a":[4,{"y":5}],"b":[1,[2],3]})"));
    }

    void wholeNumbersAreNeverRounded() {
        for (const char* text : {"300", "300.0", "3e2"})
            QCOMPARE(outcome(text, jsonWhole), QStringLiteral("300"));
        for (const char* text : {"9223372036854775807", "-9223372036854775808"})
            QCOMPARE(outcome(text, jsonWhole), QString::fromLatin1(text));
        for (const char* bad : {"300.5", "9223372036854775808", "1e19", "-1e19", "99999999999999999999",
                                "1e300", "true", "null", "\"3\"", "[3]"})
            QCOMPARE(outcome(bad, jsonWhole), QStringLiteral("refused"));
    }

    void kindsAreNeverConverted() {
        const QString refused = QStringLiteral("refused");
        for (const char* value : {"0", "1", "\"true\"", "null"}) QCOMPARE(outcome(value, jsonFlag), refused);
        for (const char* value : {"true", "\"1\"", "null"}) QCOMPARE(outcome(value, jsonNumber), refused);
        for (const char* value : {"1", "true", "null", "[]"}) QCOMPARE(outcome(value, jsonText), refused);
        QCOMPARE(outcome("18446744073709551615", jsonNumber), QStringLiteral("1.84467e+19"));
        QCOMPARE(outcome(R"("\ud83d\ude00")", jsonText), QStringLiteral("\U0001F600"));
        QCOMPARE(outcome("\"\uFEFFname\"", jsonText), QStringLiteral("\uFEFFname"));

        const Json object = *parsed(R"({"a":1,"n":null})");
        QVERIFY(jsonOptionalMember(object, "a") && !jsonOptionalMember(object, "n"));
        QVERIFY(!jsonOptionalMember(object, "b"));
        QVERIFY(jsonMember(object, "n").is_null());
        QVERIFY_THROWS_EXCEPTION(JsonTypeError, jsonMember(object, "b"));
        QVERIFY_THROWS_EXCEPTION(JsonTypeError, jsonMember(*parsed("[]"), "a"));
        QVERIFY_THROWS_EXCEPTION(JsonTypeError, jsonOptionalMember(*parsed("7"), "a"));
    }

    void whatIsWrittenKeepsItsOrder() {
        OrderedJson json;
        json["z"] = 1;
        json["a"] = {1.5, "\U0001F58C"};
        json["m"] = "broken \xFF";
        QCOMPARE(jsonBytes(json),
                 std::string("{\"z\":1,\"a\":[1.5,\"\U0001F58C\"],\"m\":\"broken \uFFFD\"}"));
        QVERIFY(jsonBytes(json, 2).starts_with("{\n  \"z\": 1,\n  \"a\": ["));
    }
};

QIRN_TEST(tst_Json)
#include "tst_Json.moc"

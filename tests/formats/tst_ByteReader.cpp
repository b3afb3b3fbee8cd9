#include "formats/ByteReader.h"
#include "platform/Bytes.h"
#include "support/TestMain.h"

#include <functional>
#include <limits>

using namespace qirn;

class tst_ByteReader : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void numbersAreWrittenAndReadHighByteFirst();
    void aReadPastTheEndThrowsAndMovesNothing_data();
    void aReadPastTheEndThrowsAndMovesNothing();
    void placesFromStartToEndCanBeGoneTo();
    void aLengthIsFilledInLater();
};

void tst_ByteReader::numbersAreWrittenAndReadHighByteFirst() {
    BEWriter out;
    out.u8(0xFE);
    out.u16(0x0102);
    out.u32(0x83040506);
    out.i16(-2);
    out.i32(-3);
    out.bytes(QByteArray("ab"));
    out.zeros(3);
    QCOMPARE(out.size(), 18);
    const QByteArray bytes = out.take();
    QCOMPARE(bytes.toHex(), QByteArray("fe010283040506fffefffffffd6162000000"));

    BEReader in(bytesOf(bytes));
    QCOMPARE(in.u8(), 0xFE);
    QCOMPARE(in.u16(), 0x0102);
    QCOMPARE(in.u32(), 0x83040506u);
    QCOMPARE(in.i16(), -2);
    QCOMPARE(in.i32(), -3);
    QCOMPARE(in.slice(2)[1], 'b');
    in.moveTo(1);
    QCOMPARE(in.u64(), 0x0102830405'06fffeu);
}

void tst_ByteReader::aReadPastTheEndThrowsAndMovesNothing_data() {
    QTest::addColumn<std::function<void(BEReader&)>>("read");
    const auto row = [](const char* name, std::function<void(BEReader&)> read) {
        QTest::newRow(name) << read;
    };
    row("u16", [](BEReader& in) { in.u16(); });
    row("u32", [](BEReader& in) { in.u32(); });
    row("u64", [](BEReader& in) { in.u64(); });
    row("i16", [](BEReader& in) { in.i16(); });
    row("i32", [](BEReader& in) { in.i32(); });
    row("slice of two", [](BEReader& in) { in.slice(2); });
    row("slice of minus one", [](BEReader& in) { in.slice(-1); });
    row("slice of the most", [](BEReader& in) { in.slice(std::numeric_limits<int64_t>::max()); });
    row("skip back", [](BEReader& in) { in.skip(std::numeric_limits<int64_t>::min()); });
    row("move behind the end", [](BEReader& in) { in.moveTo(4); });
    row("move before the start", [](BEReader& in) { in.moveTo(-1); });
}

void tst_ByteReader::aReadPastTheEndThrowsAndMovesNothing() {
    QFETCH(std::function<void(BEReader&)>, read);
    const QByteArray bytes("abc");
    BEReader in(bytesOf(bytes));
    in.skip(2);
    QVERIFY_THROWS_EXCEPTION(BEReader::Short, read(in));
    QCOMPARE(in.pos(), 2);
    QCOMPARE(in.remaining(), 1);
    QCOMPARE(in.u8(), 'c');
    QVERIFY_THROWS_EXCEPTION(BEReader::Short, in.u8());
}

void tst_ByteReader::placesFromStartToEndCanBeGoneTo() {
    const QByteArray bytes("abc");
    BEReader in(bytesOf(bytes));
    in.moveTo(3);
    QVERIFY(in.slice(0).empty());
    QCOMPARE(in.remaining(), 0);
    in.moveTo(0);
    QCOMPARE(in.u16(), 0x6162);
    QVERIFY_THROWS_EXCEPTION(BEReader::Short, BEReader({}).u8());
}

void tst_ByteReader::aLengthIsFilledInLater() {
    BEWriter out;
    out.u8(1);
    const int64_t place = out.size();
    out.u32(0);
    out.u8(2);
    out.patchU32(place, 0xA1B2C3D4);
    QCOMPARE(out.data().toHex(), QByteArray("01a1b2c3d402"));
}

QIRN_TEST(tst_ByteReader)
#include "tst_ByteReader.moc"

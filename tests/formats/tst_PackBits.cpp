#include "core/SeededRandom.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PackBits.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

using Row = std::vector<uint8_t>;

Row bytes(const QByteArray& array) {
    return {array.begin(), array.end()};
}

Row packedBy(uint8_t* (*pack)(std::span<const uint8_t>, uint8_t*), const Row& row) {
    Row out(PSDFile::packedRoom(row.size()));
    out.resize(static_cast<std::size_t>(pack(row, out.data()) - out.data()));
    return out;
}

Row unpacked(const Row& packed, std::size_t length) {
    Row row(length, 0xEE);
    PSDFile::unpackBits(packed, row);
    return row;
}

/// Rows in which runs and stretches of every length occur, pairs within stretches too.
Row mixedRow(SeededRandom& random, std::size_t length) {
    Row row;
    const uint64_t kinds = 2 + random.next() % 5, longest = 1 + random.next() % 300;
    while (row.size() < length) {
        const uint64_t count = random.next() % 3 ? 1 + random.next() % 4 : 1 + random.next() % longest;
        row.insert(row.end(), count, static_cast<uint8_t>(random.next() % kinds * 51));
    }
    row.resize(length);
    return row;
}

} // namespace

class tst_PackBits : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void rowsPackToTheseBytes() {
        const auto hex = [](const char* digits) { return QByteArray::fromHex(digits); };
        QByteArray rising;
        for (int i = 0; i < 130; ++i) rising.append(static_cast<char>(i));
        forRows<QByteArray, QByteArray>(
            {{"nothing", "", ""},
             {"one byte", hex("07"), hex("0007")},
             {"runs round a byte", hex("01010203030303"), hex("FF010002FD03")},
             {"a pair within a stretch", hex("0102020304"), hex("040102020304")},
             {"a pair at the end of a stretch", hex("010202"), hex("02010202")},
             {"128 equal", QByteArray(128, 'x'), hex("8178")},
             {"130 equal", QByteArray(130, 'x'), hex("8178FF78")},
             {"130 different", rising, hex("7F") + rising.left(128) + hex("018081")},
             // The stretch is full one byte before the three: they are a run of their own.
             {"a run behind a full stretch", rising.left(128) + "xxx",
              hex("7F") + rising.left(128) + hex("FE78")}},
            [](const QByteArray& row, const QByteArray& packed) {
                QCOMPARE(packedBy(PSDFile::packBitsPlainly, bytes(row)), bytes(packed));
                QCOMPARE(packedBy(PSDFile::packBits, bytes(row)), bytes(packed));
                QCOMPARE(unpacked(bytes(packed), static_cast<std::size_t>(row.size())), bytes(row));
            });
    }

    void packingSixtyFourAtATimeGivesTheSameBytes() {
        SeededRandom random(1005);
        for (std::size_t round = 0; round < 6000; ++round) {
            // All short lengths, then any; a few beyond the longest picture.
            const std::size_t length = round < 700   ? round
                                       : round < 710 ? 32760 + round % 20
                                                     : random.next() % 4000;
            const Row row = mixedRow(random, length);
            const Row packed = packedBy(PSDFile::packBits, row);
            QVERIFY2(packed == packedBy(PSDFile::packBitsPlainly, row), qPrintable(QString::number(round)));
            QVERIFY(unpacked(packed, length) == row);
        }
    }

    void aPartIsThatPartOfTheRow() {
        SeededRandom random(9);
        for (int round = 0; round < 400; ++round) {
            const std::size_t length = 1 + random.next() % 400;
            const Row row = mixedRow(random, length);
            Row packed = packedBy(PSDFile::packBits, row);
            const std::size_t from = random.next() % length, count = random.next() % (length - from + 1);
            Row part(count, 0xEE);
            QCOMPARE(
                PSDFile::unpackPart(packed, static_cast<int64_t>(length), static_cast<int64_t>(from), part),
                count);
            QVERIFY(part == Row(row.data() + from, row.data() + from + count));
            packed.pop_back(); // beyond the part or not, the row is walked to its end
            QVERIFY_THROWS_EXCEPTION(
                BEReader::Short,
                PSDFile::unpackPart(packed, static_cast<int64_t>(length), static_cast<int64_t>(from), part));
        }
        // A row that ends early leaves zeros behind it, and is not looked for left of the part.
        for (int round = 0; round < 400; ++round) {
            Row row = mixedRow(random, random.next() % 400), part(400);
            Row packed = packedBy(PSDFile::packBits, row);
            packed.insert(packed.end(), 300, 0x80); // stands for nothing, but leaves room to read ahead
            PSDFile::unpackPart(packed, int64_t{1} << 32, 0, part);
            row.resize(part.size());
            QVERIFY(part == row);
        }
        Row part(3);
        QCOMPARE(PSDFile::unpackPart(Row{0xFD, 5}, int64_t{1} << 32, 2, part),
                 std::size_t{2}); // bytes 2 and 3
        QCOMPARE(part, (Row{5, 5, 0}));
        QCOMPARE(PSDFile::unpackPart(Row{0xFD, 5}, int64_t{1} << 32, 40, part), std::size_t{0});
    }
};

QIRN_TEST(tst_PackBits)
#include "tst_PackBits.moc"

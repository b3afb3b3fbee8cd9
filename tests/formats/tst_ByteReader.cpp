#include "formats/common/ByteReader.h"
#include "platform/Bytes.h"
#include "support/TestMain.h"

#include <functional>
#include <limits>

using namespace qirn;

class tst_ByteReader : public QObject {
    Q_OBJECT
private Q_SLOTS:

    void aReadPastTheEndThrowsAndMovesNothing() {
        using Read = std::function<void(BEReader&)>;
        const int64_t most = std::numeric_limits<int64_t>::max();
        const QByteArray bytes("abc");
        for (const Read& read : std::initializer_list<Read>{
                 [](BEReader& in) { in.u16(); }, [](BEReader& in) { in.u32(); },
                 [](BEReader& in) { in.u64(); }, [](BEReader& in) { in.slice(2); },
                 [](BEReader& in) { in.slice(-1); }, [](BEReader& in) { in.slice(most); },
                 [](BEReader& in) { in.skip(-most); }, [](BEReader& in) { in.moveTo(4); },
                 [](BEReader& in) { in.moveTo(-1); }}) {
            BEReader in(bytesOf(bytes));
            in.skip(2);
            QVERIFY_THROWS_EXCEPTION(BEReader::Short, read(in));
            QCOMPARE(in.pos(), 2);
            QCOMPARE(in.u8(), 'c');
            QVERIFY(in.slice(0).empty());
            QVERIFY_THROWS_EXCEPTION(BEReader::Short, in.u8());
        }
    }
};

QIRN_TEST(tst_ByteReader)
#include "tst_ByteReader.moc"

#include "brush/BrushLibrary.h"
#include "brush/StrokeConstants.h"
#include "platform/Parallel.h"
#include "platform/lanes/InstructionSets.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

/// The same stroke gives the same bytes with every compiler and optimization, on every processor and with any number
/// of threads. `tools/stroke-matrix` runs this class for each of them.
class tst_StrokeConstants : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPresetPaintsTheSameBytes_data() {
        QTest::addColumn<StrokeConstant>("wanted");
        for (const StrokeConstant& row : kStrokeConstants) QTest::newRow(row.name) << row;
    }
    void everyPresetPaintsTheSameBytes() {
        QFETCH(StrokeConstant, wanted);
        const auto brush = BrushLibrary::named(QString::fromLatin1(wanted.name));
        QVERIFY(brush);
        const std::vector<std::string> sets = instructionSets();
        for (std::size_t i = 0; i <= sets.size(); ++i) {
            useInstructionSet(i < sets.size() ? sets[i] : std::string());
            setConcurrency(i < sets.size() ? 1 : 0);
            const ZigzagResult got = paintZigzag(*brush);
            const QString line = QString::asprintf("    {\"%s\", 0x%016llXu, %lld},", wanted.name,
                                                   static_cast<unsigned long long>(got.fingerprint),
                                                   static_cast<long long>(got.dabCount));
            QVERIFY2(got.fingerprint == wanted.fingerprint && got.dabCount == wanted.dabCount,
                     qPrintable(line));
        }
    }
    void cleanup() {
        setConcurrency(0);
        useInstructionSet({});
    }

    void everyPresetIsInTheTable() {
        QStringList wanted, listed;
        for (const BrushSettings& brush : BrushLibrary::builtIn()) wanted.append(brush.name);
        for (const StrokeConstant& constant : kStrokeConstants)
            listed.append(QString::fromLatin1(constant.name));
        QCOMPARE(listed, wanted);
    }
};

QIRN_TEST(tst_StrokeConstants)
#include "tst_StrokeConstants.moc"

#include "brush/BrushLibrary.h"
#include "brush/PaperGrain.h"
#include "brush/StrokeConstants.h"
#include "core/PaintEngine.h"
#include "platform/InstructionSets.h"
#include "platform/Parallel.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

/// The same stroke gives the same bytes with every compiler and optimisation, on every processor and with any number
/// of threads. `tools/stroke-matrix` runs this class for each of them.
class tst_StrokeConstants : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPresetPaintsTheSameBytes_data() {
        QTest::addColumn<int>("row");
        for (int row = 0; row < static_cast<int>(std::size(kStrokeConstants)); ++row) {
            QTest::newRow(kStrokeConstants[row].name) << row;
        }
    }
    void everyPresetPaintsTheSameBytes() {
        QFETCH(int, row);
        const StrokeConstant& wanted = kStrokeConstants[row];
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

    void thePaperIsTheSame() {
        const auto grain = PaperGrain::values();
        QCOMPARE(PaintEngine::fnv({reinterpret_cast<const uint8_t*>(grain.data()), grain.size_bytes()}),
                 uint64_t{0xBB48E79A9F646437u});
        QCOMPARE(*std::min_element(grain.begin(), grain.end()), 0.0f);
        QCOMPARE(*std::max_element(grain.begin(), grain.end()), 1.0f);
        // The last column goes on into the first as smoothly as any column into the next, and so do the rows.
        float inside = 0, across = 0;
        for (std::size_t y = 0; y < 256; ++y) {
            for (std::size_t x = 0; x < 256; ++x) {
                const float right = std::fabs(grain[y * 256 + x] - grain[y * 256 + (x + 1) % 256]);
                const float below = std::fabs(grain[y * 256 + x] - grain[(y + 1) % 256 * 256 + x]);
                (x == 255 ? across : inside) = std::max(x == 255 ? across : inside, right);
                (y == 255 ? across : inside) = std::max(y == 255 ? across : inside, below);
            }
        }
        QVERIFY2(across <= inside, qPrintable(QStringLiteral("%1 and %2").arg(across).arg(inside)));
    }
};

QIRN_TEST(tst_StrokeConstants)
#include "tst_StrokeConstants.moc"

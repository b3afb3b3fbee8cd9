#include "platform/lanes/InstructionSets.h"
#include "support/TestMain.h"

#include <hwy/targets.h>

using namespace qirn;

class tst_InstructionSets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void askingLeavesTheChosenOne() {
        for (const std::string& name : instructionSets()) {
            useInstructionSet(name);
            const int64_t chosen = hwy::SupportedTargets();
            QCOMPARE(name, hwy::TargetName(chosen & -chosen));
            QVERIFY(!instructionSets().empty());
            QCOMPARE(hwy::SupportedTargets(), chosen);
        }
        useInstructionSet({});
    }
};

QIRN_TEST(tst_InstructionSets)
#include "tst_InstructionSets.moc"

#include "durability/RandomHand.h"
#include "durability/Row.h"
#include "platform/BlockPool.h"

#include <algorithm>
#include <numeric>

#include <QThread>
#include <malloc.h>
#ifdef __has_feature
#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#define QIRN_HAS_SANITIZERS
#endif
#endif

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int64_t kDeeds = 150;            // of a round, which has a studio of its own
constexpr int kRoundTakesAtMost = 120'000; // milliseconds

int64_t bytesInUse() {
    BlockPool::trim();
#ifdef QIRN_HAS_SANITIZERS
    return BlockPool::usedBytes() + static_cast<int64_t>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 facts = mallinfo2();
    return BlockPool::usedBytes() + static_cast<int64_t>(facts.uordblks + facts.hblkhd);
#endif
}

/// Rounds of random deeds from a seed on: `SEED ROUNDS [DEED,DEED,...]`. Tells each round's seed, then the memory that is
/// in use after it, or what was wrong.
int randomHand(const QStringList& arguments) {
    const uint64_t first = arguments[0].toULongLong();
    std::vector<int64_t> deeds(kDeeds);
    std::iota(deeds.begin(), deeds.end(), 0);
    if (arguments.size() > 2) {
        deeds.clear();
        for (const QString& deed : arguments[2].split(u',')) deeds.push_back(deed.toLongLong());
    }
    for (uint64_t seed = first; seed < first + arguments[1].toULongLong(); ++seed) {
        std::printf("round %llu\n", static_cast<unsigned long long>(seed));
        std::fflush(stdout);
        {
            RandomHand hand(seed);
            for (const int64_t deed : deeds) hand.act(deed);
            if (const QString fault = hand.fault(); !fault.isEmpty()) {
                std::printf("%s\n", qPrintable(fault));
                return 1;
            }
            hand.closeAll();
        }
        std::printf("memory %lld\n", static_cast<long long>(bytesInUse()));
        std::fflush(stdout);
    }
    return 0;
}
QIRN_HELPER(randomHand)

/// One that is at work, and what it has said.
struct Hand {
    QTemporaryDir folder;
    QProcess process;
    QByteArray said;
    std::vector<int64_t> memory;

    /// Waits for its end. What went wrong, with the seed of the round; empty for nothing.
    QString end() {
        QByteArray seed, last;
        while (const auto line = nextLine(process, kRoundTakesAtMost)) {
            last = *line;
            if (last.startsWith("round ")) seed = last.mid(6);
            if (last.startsWith("memory ")) memory.push_back(last.mid(7).toLongLong());
        }
        const bool hangs = process.state() != QProcess::NotRunning && !process.waitForFinished(5000);
        if (hangs) process.kill();
        process.waitForFinished();
        if (!hangs && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) return {};
        const QString what = hangs                       ? QStringLiteral("hangs")
                             : last.startsWith("round ") ? QStringLiteral("crashes")
                                                         : QString::fromUtf8(last);
        return QString::fromUtf8(seed) + u'|' + what;
    }
};

/// The shortest list of deeds found after which a round still goes wrong.
QStringList shortened(const QString& seed) {
    QStringList deeds;
    for (int64_t deed = 0; deed < kDeeds; ++deed) deeds << QString::number(deed);
    const auto fails = [&](const QStringList& some) {
        Hand hand;
        startHelper(hand.process, QStringLiteral("randomHand"), {seed, QStringLiteral("1"), some.join(u',')},
                    hand.folder.path());
        return !hand.end().isEmpty();
    };
    if (!fails(deeds)) return {}; // not by itself
    for (qsizetype piece = deeds.size() / 2; piece > 0; piece /= 2) {
        for (qsizetype at = 0; at < deeds.size();) {
            QStringList fewer = deeds;
            fewer.remove(at, std::min(piece, deeds.size() - at));
            if (!fewer.isEmpty() && fails(fewer))
                deeds = fewer;
            else
                at += piece;
        }
    }
    return deeds;
}

} // namespace

class tst_RandomCommands : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nothingCrashesAndUndoGivesTheStart() {
        const int64_t roundsOfAHand = isLongForm() ? 200 : 40;
        const int64_t rounds = (times(6'000, 1'000'000) + kDeeds - 1) / kDeeds;
        const auto atOnce = isLongForm() ? static_cast<std::size_t>(QThread::idealThreadCount()) : 1;
        std::vector<std::unique_ptr<Hand>> hands;
        int64_t begun = 0, grown = 0;
        const auto finish = [&] {
            const QString fault = hands.front()->end();
            std::vector<int64_t> memory = std::move(hands.front()->memory);
            hands.erase(hands.begin());
            if (!fault.isEmpty()) {
                const QString seed = fault.section(u'|', 0, 0);
                QFAIL(qPrintable(QStringLiteral("%1: --helper randomHand %2 1 %3")
                                     .arg(fault.section(u'|', 1), seed, shortened(seed).join(u','))));
            }
            // Of a whole hand's: the middle of its last quarter beside that of its second.
            if (std::ssize(memory) < roundsOfAHand) return;
            const auto middle = [&](int quarter) {
                const auto begin = memory.begin() + quarter * roundsOfAHand / 4;
                std::nth_element(begin, begin + roundsOfAHand / 8, begin + roundsOfAHand / 4);
                return begin[roundsOfAHand / 8];
            };
            grown = std::max(grown, middle(3) - middle(1));
        };
        while (begun < rounds || !hands.empty()) {
            if (begun < rounds && hands.size() < atOnce) {
                const int64_t some = std::min<int64_t>(rounds - begun, roundsOfAHand);
                hands.push_back(std::make_unique<Hand>());
                startHelper(
                    hands.back()->process, QStringLiteral("randomHand"),
                    {QString::number(firstSeed() + static_cast<uint64_t>(begun)), QString::number(some)},
                    hands.back()->folder.path());
                begun += some;
                continue;
            }
            finish();
            if (QTest::currentTestFailed()) return;
        }
        QVERIFY2(grown < 200'000, qPrintable(QString::number(grown)));
        tellRow(
            QStringLiteral("random commands, strokes, undo, tabs, saves, sheets through the model"),
            rounds * kDeeds,
            QStringLiteral(
                "0 crashes, 0 hangs; undoing all gave the start, and doing all again the end; %1 bytes more "
                "after %2 rounds in a process")
                .arg(grown)
                .arg(roundsOfAHand * 3 / 4),
            QStringLiteral("pictures of at most 520 pixels a side at first; the panels are not there"));
    }
};

QIRN_TEST(tst_RandomCommands)
#include "tst_RandomCommands.moc"

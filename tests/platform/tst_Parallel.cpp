#include "platform/Parallel.h"
#include "support/TestMain.h"
#include "support/Watched.h"

#include <array>
#include <atomic>
#include <thread>

using namespace qirn;

class tst_Parallel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void everyIndexRunsOnceBeforeTheCallReturns() {
        for (int threads : {0, 1, 5}) {
            setConcurrency(threads);
            for (int64_t count : {-3, 0, 1, 2, 1000}) {
                std::vector<std::atomic<int>> runs(1000);
                concurrentPerform(count, [&](int64_t i) { ++runs[static_cast<std::size_t>(i)]; });
                for (int64_t i = 0; i < 1000; ++i)
                    QCOMPARE(runs[static_cast<std::size_t>(i)].load(), i < count);
                for (int64_t homes : {1, 3, 400}) {
                    concurrentPerformAtHome(
                        count, [homes](int64_t i) { return i % homes; },
                        [&](int64_t i) { --runs[static_cast<std::size_t>(i)]; });
                    for (int64_t i = 0; i < std::min<int64_t>(count, 1000); ++i)
                        QCOMPARE(runs[static_cast<std::size_t>(i)].exchange(1), 0);
                }
            }
        }
        setConcurrency(0);
    }

    void noTwoBodiesOfOneWorkerRunAtOnce() {
        for (int64_t count : {-3, 0, 1, 2, 3000}) {
            std::vector<int> runs(3000), sums(3); // unguarded: races show in the sums or a sanitizer
            std::atomic<int64_t> strangers = 0;
            concurrentPerformByWorkers(3, count, [&](std::size_t worker, int64_t i) {
                strangers += worker >= sums.size();
                ++sums[worker];
                ++runs[static_cast<std::size_t>(i)];
            });
            QCOMPARE(strangers.load(), 0);
            QCOMPARE(sums[0] + sums[1] + sums[2], static_cast<int>(std::max<int64_t>(count, 0)));
            for (int64_t i = 0; i < std::ssize(runs); ++i)
                QCOMPARE(runs[static_cast<std::size_t>(i)], i < count ? 1 : 0);
        }
    }

    void aLoopTellsHowFarItIsAndEndsWhereItIsStopped() {
        const auto loop = [](bool byWorkers, const Progress& progress) {
            std::atomic<int64_t> runs = 0;
            const auto body = [&](auto&&...) { ++runs; };
            try {
                if (byWorkers)
                    concurrentPerformByWorkers(3, 1000, body, progress);
                else
                    concurrentPerform(1000, body, progress);
            } catch (const Cancelled&) {
                return -runs.load();
            }
            return runs.load();
        };
        for (const bool byWorkers : {false, true}) {
            Watched willing, tired(10);
            QCOMPARE(loop(byWorkers, Progress(willing).part(0.25, 0.75)), 1000);
            QCOMPARE(willing.largest(), 0.75);
            QCOMPARE(willing.asked(), 1000);
            const int64_t runs = -loop(byWorkers, Progress(tired));
            QVERIFY2(runs > 10 && runs < 10 + 2 * concurrency() + 2, qPrintable(QString::number(runs)));
        }
    }

    void piecesComeBackToTheirThread() {
        constexpr int kHomes = 8, kCalls = 20;
        setConcurrency(kHomes); // more than the machine may have
        std::array<std::thread::id, kHomes> last;
        int moved = 0;
        for (int call = 0; call < kCalls; ++call) {
            // Each waits for the others, so that nobody is free for another's home; one may be left without a thread.
            std::atomic<int> begun = 0;
            std::array<std::thread::id, kHomes> now;
            concurrentPerformAtHome(
                kHomes, [](int64_t i) { return i; },
                [&](int64_t i) {
                    now[static_cast<std::size_t>(i)] = std::this_thread::get_id();
                    ++begun;
                    for (QDeadlineTimer late(1000); begun < kHomes - 1 && !late.hasExpired();)
                        std::this_thread::yield();
                });
            for (std::size_t i = 0; call > 0 && i < kHomes; ++i) moved += now[i] != last[i];
            last = now;
        }
        QVERIFY2(moved * 3 <= kHomes * kCalls, qPrintable(QStringLiteral("%1 moved").arg(moved)));
    }

    void aLimitHoldsUntilItIsLifted() {
        const int all = concurrency();
        setConcurrency(1);
        QCOMPARE(concurrency(), 1);
        const auto caller = std::this_thread::get_id();
        std::atomic<int> elsewhere = 0;
        concurrentPerform(500, [&](int64_t) { elsewhere += std::this_thread::get_id() != caller; });
        QCOMPARE(elsewhere.load(), 0);
        setConcurrency(0);
        QCOMPARE(concurrency(), all);
    }
};

QIRN_TEST(tst_Parallel)
#include "tst_Parallel.moc"

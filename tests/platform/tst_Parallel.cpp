#include "platform/Parallel.h"
#include "support/TestMain.h"

#include <atomic>
#include <set>
#include <thread>

using namespace qirn;

class tst_Parallel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyIndexRunsOnceBeforeTheCallReturns() {
        for (int threads : {0, 1, 5}) {
            setConcurrency(threads);
            for (int64_t count : {-3, 0, 1, 2, 1000}) {
                std::vector<std::atomic<int>> runs(1000);
                concurrentPerform(count, [&](int64_t i) { ++runs[static_cast<std::size_t>(i)]; });
                for (int64_t i = 0; i < 1000; ++i)
                    QCOMPARE(runs[static_cast<std::size_t>(i)].load(), i < count);
            }
        }
        setConcurrency(0);
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

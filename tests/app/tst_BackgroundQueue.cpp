#include "app/desktop/BackgroundQueue.h"

#include "core/PaintDocument.h"
#include "formats/native/PaintFile.h"
#include "platform/BackgroundThread.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <numeric>
#include <optional>
#include <set>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

class tst_BackgroundQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void jobsRunInOrderAndTellWhatTheyThrew() {
        std::vector<int> order; // unguarded: one thread, and finish() waits for it
        std::shared_future<void> failed;
        for (int i = 0; i < 50; ++i) {
            const auto job = BackgroundQueue::files().run([&order, i] {
                order.push_back(i);
                if (i == 20) throw std::runtime_error("full");
            });
            if (i == 20) failed = job;
        }
        BackgroundQueue::files().finish();
        std::vector<int> wanted(50);
        std::iota(wanted.begin(), wanted.end(), 0);
        QCOMPARE(order, wanted);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, failed.get());
    }

    void nobodyWaitsForWhatIsNotHis() {
        BackgroundQueue& queue = BackgroundQueue::files();
        const QUuid mine = QUuid::createUuid(), another = QUuid::createUuid();
        std::promise<void> go;
        std::atomic<bool> hasBegun = false;
        const auto held = queue.run(
            [&] {
                hasBegun = true;
                go.get_future().wait();
            },
            another);
        // For the job to begin, however late its low priority lets it: looked at, since a queue tells of ends alone.
        while (!hasBegun) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::vector<int> order; // unguarded: one subject's jobs come one after the other
        bool isEnded = false;
        const auto add = [&](int i) { return [&order, i] { order.push_back(i); }; };
        const auto dropped = queue.runInstead(mine, add(0));
        queue.runInstead(mine, add(1), [&] { isEnded = true; });
        queue.run(add(2), mine);
        queue.finish(mine);
        QCOMPARE(order, std::vector<int>({1, 2}));
        QVERIFY(isEnded);
        QVERIFY_THROWS_EXCEPTION(std::future_error, dropped.get());
        const auto behind = queue.run(add(3), another);
        QVERIFY(behind.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout);
        go.set_value();
        queue.finish(another);
        QCOMPARE(order.back(), 3);
    }

    void aJobKeepsToItsOwnThreadUntilSomebodyWaits() {
        setConcurrency(4);
        for (const bool byWorkers : {false, true}) {
            std::mutex mutex;
            std::set<std::thread::id> threads[2]; // before somebody waits, and then
            std::atomic<int> done = 0;
            std::atomic<bool> isWaiting = false;
            int priority = 0;
            BackgroundQueue::previews().run([&] {
                priority = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
                const auto body = [&](int64_t) {
                    // Work that leaves the others time to take a share; with less they may come too late.
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    const std::lock_guard lock(mutex);
                    threads[isWaiting].insert(std::this_thread::get_id());
                    ++done;
                };
                // On a busy machine the others may take no share for a while: as often as it takes.
                for (int round = 0; round < 200 && threads[1].size() < 2; ++round) {
                    if (byWorkers)
                        concurrentPerformByWorkers(4, 100, [&](std::size_t, int64_t i) { body(i); });
                    else
                        concurrentPerform(100, body);
                }
            });
            // For the job, however long so low a priority takes: no limit but the test program's own.
            while (done <= 10) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            isWaiting = true;
            BackgroundQueue::previews().finish();
            QCOMPARE(done % 100, 0);
            QCOMPARE(priority, 19);
            QCOMPARE(threads[0].size(), std::size_t{1});
            QVERIFY(threads[1].size() > 1);
        }
        setConcurrency(0);
    }

    void aLoopRestsWhileAHandPaints() {
        BackgroundQueue queue;
        for (const int kind : {0, 1, 2, 3}) {
            const bool byWorkers = kind % 2, isAwaited = kind / 2;
            std::atomic<int> done = 0;
            auto hand = std::make_optional<HandInMotion>();
            const auto end = queue.run([&] {
                BackgroundRest(std::chrono::milliseconds(20)).whileHandMoves(); // a short one ends by itself
                if (byWorkers)
                    concurrentPerformByWorkers(4, 100, [&](std::size_t, int64_t) { ++done; });
                else
                    concurrentPerform(100, [&](int64_t) { ++done; });
            });
            // For the first piece, however late. That no second one follows has no event to wait for: in this time the
            // loop would have done all.
            while (done == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            QCOMPARE(done.load(), 1);
            isAwaited ? queue.finish() : hand.reset();
            end.get();
            QCOMPARE(done.load(), 100);
        }
    }

    /// Copies of ten moments, each written while the next is painted and committed: under the thread sanitizer too.
    void paintingGoesOnWhileCopiesAreWritten() {
        PaintDocument doc(600, 600, 72, PaintColor{1, 1, 1, 1});
        doc.maxUndoSteps = 1; // states go while their copies are written
        std::vector<uint64_t> moments;
        std::vector<QByteArray> copies(10);
        std::atomic<int> begun = 0; // relaxed: it puts nothing else into an order
        for (int i = 0; i < 10; ++i) {
            doc.activeLayer().freezeTiles(); // as a stroke begins, on other tiles than the last
            paintRect(doc, doc.activeLayer(), {i % 3 * 256, i * 50, 80, 90}, {9, 8, 7, 255});
            doc.commit("Brush Stroke");
            moments.push_back(doc.fingerprint());
            BackgroundQueue::files().run(
                [&begun, &copy = copies[static_cast<std::size_t>(i)], kept = snapshot(doc)] {
                    begun.fetch_add(1, std::memory_order_relaxed);
                    copy = PaintFile::encode(kept, PaintFile::kPreviewSide);
                });
            // For the copy to begin; a condition variable would put the two threads into an order and hide a race.
            while (begun.load(std::memory_order_relaxed) <= i)
                std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        BackgroundQueue::files().finish();
        for (std::size_t i = 0; i < copies.size(); ++i)
            QCOMPARE(PaintFile::decode(bytesOf(copies[i]))->fingerprint(), moments[i]);
    }
};

QIRN_TEST(tst_BackgroundQueue)
#include "tst_BackgroundQueue.moc"

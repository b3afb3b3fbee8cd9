#include "app/desktop/BackgroundQueue.h"

#include "core/PaintDocument.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <atomic>
#include <numeric>
#include <thread>

using namespace qirn;
using namespace qirn::test;

class tst_BackgroundQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void jobsRunInOrderAndTellWhatTheyThrew() {
        std::vector<int> order; // unguarded: one thread, and finish() waits for it
        std::shared_future<void> failed;
        for (int i = 0; i < 50; ++i) {
            const auto job = BackgroundQueue::run([&order, i] {
                order.push_back(i);
                if (i == 20) throw std::runtime_error("full");
            });
            if (i == 20) failed = job;
        }
        BackgroundQueue::finish();
        std::vector<int> wanted(50);
        std::iota(wanted.begin(), wanted.end(), 0);
        QCOMPARE(order, wanted);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, failed.get());
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
            BackgroundQueue::run([&begun, &copy = copies[static_cast<std::size_t>(i)], kept = snapshot(doc)] {
                begun.fetch_add(1, std::memory_order_relaxed);
                copy = PaintFile::encode(kept, PaintFile::kPreviewSide);
            });
            while (begun.load(std::memory_order_relaxed) <= i) std::this_thread::yield();
        }
        BackgroundQueue::finish();
        for (std::size_t i = 0; i < copies.size(); ++i)
            QCOMPARE(PaintFile::decode(bytesOf(copies[i]))->fingerprint(), moments[i]);
    }
};

QIRN_TEST(tst_BackgroundQueue)
#include "tst_BackgroundQueue.moc"

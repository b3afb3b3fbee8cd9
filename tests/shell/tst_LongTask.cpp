#include "app/files/LongTask.h"
#include "app/model/Guarded.h"
#include "operations/Reshape.h"
#include "shell/sheets/WorkCover.h"
#include "support/Window.h"

#include <chrono>
#include <new>
#include <thread>

#include <QPushButton>

using namespace qirn;
using namespace qirn::test;
using namespace std::chrono_literals;

namespace {

/// Notes each rise.
struct NotedCover : LongTaskCover {
    int risen = 0, fallen = 0;
    bool fails = false;
    void rise(const QString&, const std::function<void()>&) override {
        ++risen;
        if (fails) throw std::bad_alloc();
    }
    void showDone(double) override {}
    void fall() override { ++fallen; }
    bool isPart(const QObject&) const override { return false; }
};

/// Work of this length that asks all the while.
auto lasting(std::chrono::milliseconds time, int* questions = nullptr) {
    return [=](const Progress& progress) {
        const auto begun = std::chrono::steady_clock::now();
        for (auto now = begun; now < begun + time; now = std::chrono::steady_clock::now()) {
            std::this_thread::sleep_for(5ms); // the work itself: its length is what the tests are about
            if (questions) ++*questions;
            progress.done((now - begun).count(), std::chrono::nanoseconds(time).count());
        }
    };
}

} // namespace

/// Work that is waited for, in the real window.
class tst_LongTask : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nothingShowsForAThirdOfASecond() {
        NotedCover cover;
        LongTask task;
        const auto main = std::this_thread::get_id();
        std::thread::id elsewhere;
        task.run({}, [&](const Progress&) { elsewhere = std::this_thread::get_id(); });
        QVERIFY(elsewhere == main); // no window, no thread
        task.setCover(&cover);
        task.run({}, [&](const Progress&) { elsewhere = std::this_thread::get_id(); });
        QVERIFY(elsewhere != main);
        task.run({}, lasting(150ms));
        QCOMPARE(cover.risen, 0);
        task.run({}, lasting(450ms));
        QCOMPARE(cover.risen, 1);
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                                 task.run({}, [](const Progress&) { throw std::bad_alloc(); }));
        cover.fails = true;
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc, task.run({}, lasting(30s)));
        QVERIFY(!task.isRunning() && cover.fallen == 2);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_A, {});
        QObject receiver;
        QVERIFY2(!QCoreApplication::sendEvent(&receiver, &key), "the filter is still there");
    }

    void theWindowPaintsAndTakesNoInputButCancel() {
        Window w;
        LongTask& task = w.model.longTask();
        const uint64_t before = w.doc().fingerprint();
        const int64_t steps = w.doc().undoDepth();
        w.paint();
        QVERIFY(w.doc().undoDepth() == steps + 1);
        const uint64_t painted = w.doc().fingerprint();
        QVERIFY(painted != before);
        w.set(&PaintPrefs::autosaveSeconds, 1.0);
        bool later = false, wasLate = false, wasUp = false;
        int presses = 0, turns = 0;
        QTimer hand; // of a user who goes on as if nothing were
        connect(&hand, &QTimer::timeout, &w.view, [&] {
            ++turns;
            if (presses++ == 0)
                soon(w.model, [&] {
                    later = true;
                    wasLate = !task.isRunning();
                });
            QWindow* const window = w.view.windowHandle(); // as the display would send them
            const QPoint middle = w.canvas().mapTo(&w.view, QPoint(300, 60));
            QTest::mousePress(window, Qt::LeftButton, {}, middle);
            QTest::mouseMove(window, middle + QPoint(9, 9));
            QTest::mouseRelease(window, Qt::LeftButton, {}, middle);
            QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier);
            w.model.safety().autosaveTick();
            w.view.close();
            auto& cover = w.find<WorkCover>();
            if (!cover.isVisible()) return;
            wasUp = true;
            QVERIFY(w.find<QPushButton>("cancelWork").hasFocus());
            if (turns > 20) QTest::keyClick(window, Qt::Key_Escape);
        });
        hand.start(20);
        int questions = 0;
        QVERIFY(!task.run("Thinking…", lasting(30s, &questions)));
        hand.stop();
        QVERIFY(wasUp && !later && !task.isRunning());
        QTRY_VERIFY(later && wasLate);
        QCOMPARE(w.doc().fingerprint(), painted);
        QVERIFY(w.view.isVisible() && !w.find<WorkCover>().isVisible() && w.canvas().hasFocus());
        QVERIFY(!w.model.safety().lastAutosaveText());
        QVERIFY2(questions < 200, "cancelled late");
        w.paint(); // and is itself again
        QCOMPARE(w.doc().undoDepth(), steps + 2);
    }

    void anEditIsADraftUntilItIsDone() {
        Window w;
        w.paint();
        const uint64_t before = w.doc().fingerprint();
        const int64_t steps = w.doc().undoDepth();
        const auto turned = [&](auto stopped) {
            w.model.editLong("Turn", [&](PaintDocument& draft, const Progress&) {
                rotate(draft, 1);
                if (w.doc().fingerprint() != before) qFatal("The picture changes under the window.");
                stopped();
            });
        };
        turned([] { throw Cancelled(); });
        QVERIFY(!guarded(w.model, [&] { turned([] { throw std::bad_alloc(); }); }));
        QCOMPARE(w.model.messages().hud(), "There is not enough memory for this. Nothing was changed.");
        QVERIFY(w.doc().fingerprint() == before && w.doc().undoDepth() == steps && !w.doc().canRedo());
        turned([] {});
        QCOMPARE(w.doc().grid().width, 300);
        QCOMPARE(w.doc().undoName(), "Turn");
        w.model.undo();
        QCOMPARE(w.doc().fingerprint(), before);
    }
};

QIRN_TEST(tst_LongTask)
#include "tst_LongTask.moc"

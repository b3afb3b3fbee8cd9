#include "Measurements.h"
#include "PenRecording.h"

#include "../PaintedPicture.h"
#include "../PlainPass.h"
#include "app/canvas/CanvasView.h"
#include "app/desktop/QtDesktop.h"
#include "app/desktop/Store.h"
#include "app/model/Brushes.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "brush/BrushLibrary.h"
#include "kit/QirnKit.h"
#include "shell/MainView.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <utility>
#include <vector>

#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTimer>

namespace qirn::bench {

namespace {

constexpr double kPointSeconds = 0.005; // a pen of 200 Hz

/// Counts how often widgets are painted in turn: each turn hands the whole window over where the desktop wants that.
class Repaints : public QObject {
public:
    Repaints() { qApp->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::UpdateRequest) painted_ = false;
        if (event->type() == QEvent::Paint && !std::exchange(painted_, true)) ++count;
        return false;
    }

private:
    bool painted_ = false;
};

/// Lets the desktop place the window, and the window draw itself.
void pass(double seconds) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

class Pen {
public:
    explicit Pen(CanvasView& canvas) : canvas_(canvas) {}

    /// The event, and whatever the window then has left to do.
    void send(QEvent::Type type, const StrokePoint& point) {
        const double ratio = canvas_.devicePixelRatioF();
        const QPointF view = canvas_.viewPoint({point.x, point.y});
        const QPointF at = QPointF(view.x(), canvas_.height() * ratio - view.y()) / ratio;
        const bool up = type == QEvent::TabletRelease;
        QTabletEvent event(type, &device_, at, canvas_.mapToGlobal(at), up ? 0 : point.pressure, 0, 0, 0, 0,
                           0, {}, type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                           up ? Qt::NoButton : Qt::LeftButton);
        QApplication::sendEvent(&canvas_, &event);
        QApplication::processEvents();
    }

private:
    CanvasView& canvas_;
    const QPointingDevice device_{QStringLiteral("pen"),
                                  1,
                                  QInputDevice::DeviceType::Stylus,
                                  QPointingDevice::PointerType::Pen,
                                  QInputDevice::Capability::Pressure,
                                  1,
                                  1};
};

/// Seconds that this thread has worked; a desktop that keeps it waiting takes none.
double workedSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void printTimes(const char* what, std::vector<double>& milliseconds) {
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto share = [&](double part) {
        return milliseconds[static_cast<std::size_t>(part * static_cast<double>(milliseconds.size() - 1))];
    };
    std::printf("  %s: median %.2f, 95%% %.2f, 99%% %.2f ms", what, share(0.5), share(0.95), share(0.99));
}

} // namespace

int measureWindow(int argc, char** argv, const QString& recording) {
    const QApplication app(argc, argv);
    const auto recorded = readPenRecording(recording);
    if (!recorded) {
        std::printf("No pen recording in %s\n", qPrintable(recording));
        return 1;
    }
    QirnKit::install(QStringLiteral("Qirn Paint"));
    QtDesktop desktop;
    Store store;
    PaintModel model(PaintModel::LoadStores::no, desktop, store);
    MainView studio(model);
    model.pictures().newDocument(kWidth, kHeight, 72, PaintColor::white(), QStringLiteral("4K"));
    studio.resize(kWidth, kHeight);
    studio.show();
    pass(1);
    studio.canvas().actualPixels();
    pass(0.5);
    std::printf("A hand of 200 Hz in a window of %d x %d at scale %.2f\n", studio.width(), studio.height(),
                studio.devicePixelRatioF());
    auto strokes = toSixtyFourths(*recorded, 1.5, 400, 300);
    strokes.resize(std::min<std::size_t>(strokes.size(), 8));
    Pen pen(studio.canvas());
    Repaints repaints;
    for (const char* name : {"Studio Pen", "Ink Brush", "Charcoal", "Soft Round"}) {
        model.brushes().choose(*BrushLibrary::named(QLatin1String(name)));
        std::vector<double> times, work;
        int painted = 0;
        for (const PenStroke& stroke : strokes) {
            pen.send(QEvent::TabletPress, stroke.front());
            for (const StrokePoint& point : stroke) {
                const Stopwatch watch;
                const double worked = workedSeconds();
                const int before = repaints.count;
                pen.send(QEvent::TabletMove, point);
                times.push_back(watch.seconds() * 1000);
                work.push_back((workedSeconds() - worked) * 1000);
                painted += repaints.count - before;
                if (watch.seconds() < kPointSeconds) pass(kPointSeconds - watch.seconds());
            }
            pen.send(QEvent::TabletRelease, stroke.back());
        }
        std::printf("%-12s %4.0f px, %.2f repaints a point;", name, model.brushes().activeBrush().size,
                    painted / static_cast<double>(times.size()));
        printTimes("time", times);
        printTimes("main thread's work", work);
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}

} // namespace qirn::bench

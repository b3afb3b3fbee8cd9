#include "Measurements.h"
#include "Pen.h"
#include "PenRecording.h"
#include "StudioWindow.h"

#include "../PaintedPicture.h"
#include "../PlainPass.h"
#include "app/model/Brushes.h"
#include "app/model/OpenPictures.h"
#include "brush/BrushLibrary.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include <QEvent>

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

void printTimes(const char* what, std::vector<double>& milliseconds) {
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto share = [&](double part) {
        return milliseconds[static_cast<std::size_t>(part * static_cast<double>(milliseconds.size() - 1))];
    };
    std::printf("  %s: median %.2f, 95%% %.2f, 99%% %.2f ms", what, share(0.5), share(0.95), share(0.99));
}

} // namespace

int measureWindow(int argc, char** argv, const QString& recording) {
    StudioWindow studio(argc, argv);
    const auto recorded = readPenRecording(recording);
    if (!recorded) {
        std::printf("No pen recording in %s\n", qPrintable(recording));
        return 1;
    }
    studio.model().pictures().newDocument(kWidth, kHeight, 72, PaintColor::white(), QStringLiteral("4K"));
    studio.show({kWidth, kHeight});
    studio.canvas().actualPixels();
    pass(0.5);
    CanvasView& canvas = studio.canvas();
    const QWidget& window = *canvas.window();
    std::printf("A hand of 200 Hz in a window of %d x %d at scale %.2f\n", window.width(), window.height(),
                window.devicePixelRatioF());
    auto strokes = toSixtyFourths(*recorded, 1.5, 400, 300);
    strokes.resize(std::min<std::size_t>(strokes.size(), 8));
    Pen pen(canvas);
    Repaints repaints;
    for (const char* name : {"Studio Pen", "Ink Brush", "Charcoal", "Soft Round"}) {
        studio.model().brushes().choose(*BrushLibrary::named(QLatin1String(name)));
        std::vector<double> times, work;
        int painted = 0;
        for (const PenStroke& stroke : strokes) {
            pen.send(QEvent::TabletPress, stroke.front());
            for (const StrokePoint& point : stroke) {
                const Stopwatch watch;
                const double worked = threadSeconds();
                const int before = repaints.count;
                pen.send(QEvent::TabletMove, point);
                times.push_back(watch.seconds() * 1000);
                work.push_back((threadSeconds() - worked) * 1000);
                painted += repaints.count - before;
                if (watch.seconds() < kPointSeconds) pass(kPointSeconds - watch.seconds());
            }
            pen.send(QEvent::TabletRelease, stroke.back());
        }
        std::printf("%-12s %4.0f px, %.2f repaints a point;", name,
                    studio.model().brushes().activeBrush().size, painted / static_cast<double>(times.size()));
        printTimes("time", times);
        printTimes("main thread's work", work);
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}

} // namespace qirn::bench

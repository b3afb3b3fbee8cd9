#include "Measurements.h"
#include "StudioWindow.h"

#include "../PlainPass.h"
#include "app/canvas/CanvasView.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/OpenPictures.h"
#include "app/model/PendingTransform.h"
#include "app/model/TransformState.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <QMouseEvent>

namespace qirn::bench {

namespace {

constexpr int64_t kLongWidth = 12'000, kLongHeight = 9'000;
constexpr int kRounds = 5;

/// Megabytes of this process, from a line of its status: "VmHWM:" at most since the last reset, "VmRSS:" now.
double statusMegabytes(const std::string& line) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == line && status >> kilobytes) return kilobytes * 1024 / 1e6;
    }
    return 0;
}

/// What one action took: seconds from its event until the display has the result, and what was worked meanwhile and
/// until everything behind it was done.
struct Taken {
    double shown, mainThread, process, processToIdle, peak;
};

Taken timed(StudioWindow& studio, const std::function<void()>& action) {
    BackgroundQueue::previews().finish();
    pass(0.05);
    std::ofstream("/proc/self/clear_refs") << 5; // forgets the peak
    const double before = statusMegabytes("VmRSS:");
    const double thread = threadSeconds(), process = processSeconds();
    const Stopwatch watch;
    action();
    studio.waitUntilShown();
    Taken taken{watch.seconds(), threadSeconds() - thread, processSeconds() - process, 0, 0};
    BackgroundQueue::previews().finish();
    pass(0.3);
    taken.processToIdle = processSeconds() - process;
    taken.peak = statusMegabytes("VmHWM:") - before;
    return taken;
}

/// Every tile differs, and no row of one is flat. A tenth of the pixels are half transparent.
void paintAllOver(PaintDocument& doc) {
    for (int64_t index = 0; index < doc.grid().count(); ++index) {
        uint8_t* pixels = doc.activeLayer().writableTile(index).writablePixels();
        for (int64_t i = 0; i < kTilePixels; ++i, pixels += 4) {
            const bool isThin = (i >> 3) % 10 == 0;
            pixels[0] = static_cast<uint8_t>((i * 3 + index) & (isThin ? 127 : 255));
            pixels[1] = static_cast<uint8_t>((i >> 8) & (isThin ? 127 : 255));
            pixels[2] = static_cast<uint8_t>(index & (isThin ? 127 : 255));
            pixels[3] = isThin ? 128 : 255;
        }
    }
    doc.commit(QStringLiteral("Paint"));
}

void click(CanvasView& canvas) {
    const QPointF middle = QRectF(canvas.rect()).center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, middle, canvas.mapToGlobal(middle), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(&canvas, &event);
    }
}

/// The actions in their order, each with the times of all rounds.
class Table {
public:
    explicit Table(StudioWindow& studio) : studio_(studio) {}

    void time(const char* name, const std::function<void()>& action) {
        const auto found =
            std::find_if(rows_.begin(), rows_.end(), [&](const Row& r) { return r.name == name; });
        Row& row = found != rows_.end() ? *found : rows_.emplace_back(Row{name, {}});
        row.taken.push_back(timed(studio_, action));
    }

    void print() {
        std::printf("%-28s %8s %8s %8s %8s %8s\n", "ms; medians", "shown", "main", "all", "to idle",
                    "peak MB");
        for (Row& row : rows_) {
            const auto median = [&](double Taken::*field) {
                std::sort(row.taken.begin(), row.taken.end(),
                          [&](const Taken& a, const Taken& b) { return a.*field < b.*field; });
                return row.taken[row.taken.size() / 2].*field;
            };
            std::printf("%-28s %8.0f %8.0f %8.0f %8.0f %8.0f\n", row.name.c_str(),
                        median(&Taken::shown) * 1000, median(&Taken::mainThread) * 1000,
                        median(&Taken::process) * 1000, median(&Taken::processToIdle) * 1000,
                        median(&Taken::peak));
        }
        std::fflush(stdout);
    }

private:
    struct Row {
        std::string name;
        std::vector<Taken> taken;
    };
    StudioWindow& studio_;
    std::vector<Row> rows_;
};

/// With a safety copy on its way at each of them, or with none.
void timeActions(StudioWindow& studio, Table& table, bool copies) {
    PaintModel& model = studio.model();
    const auto time = [&](const char* name, const std::function<void()>& action) {
        Recovery::settle(*model.current());
        const bool isBusy = !model.current()->copy.underWay.empty();
        if (copies && !isBusy) Recovery::write(*model.current(), Recovery::Synchronously::no);
        table.time(name, action);
    };
    const auto undo = [&] { studio.act("undo"); };
    for (int round = 0; round < kRounds; ++round) {
        model.setTool(Tool::bucket);
        pass(0.2);
        time("Bucket", [&] { click(studio.canvas()); });
        time("Undo it", undo);
        time("Lift", [&] { studio.act("freeTransform"); });
        time("Move", [&] {
            model.transform().updateTransform(
                [](TransformState& state) { state.center += QPointF(100, 50); });
        });
        time("Put down moved", [&] { studio.act("applyTransform"); });
        time("Undo it ", undo);
        studio.act("selectAll");
        time("Lift all selected", [&] { studio.act("freeTransform"); });
        time("Put it back", undo);
        studio.act("deselect");
        time("Flip", [&] { studio.act("flipHorizontal"); });
        time("Undo it  ", undo);
    }
}

} // namespace

int measureWaits(int argc, char** argv) {
    StudioWindow studio(argc, argv);
    studio.show({1480, 920});
    PaintModel& model = studio.model();
    for (const int64_t side : {10'000, 30'000}) {
        Table table(studio);
        for (int round = 0; round < kRounds; ++round) {
            table.time("New paper", [&] {
                model.pictures().newDocument(side, side, 72, PaintColor::white(), QStringLiteral("Flat"));
            });
            model.pictures().closeCurrent();
        }
        std::printf("Flat paper, %lld px a side\n", static_cast<long long>(side));
        table.print();
    }
    ToolOptions options = model.options();
    options.fill.tolerance = 255;
    model.setOptions(options);
    for (const bool copies : {false, true}) {
        for (const bool fit : {true, false}) {
            if (copies && !fit) continue; // closing waits for a long copy
            model.pictures().newDocument(kLongWidth, kLongHeight, 72, PaintColor::white(),
                                         QStringLiteral("Long"));
            Table table(studio);
            model.setTool(Tool::bucket);
            fit ? studio.canvas().fit() : studio.canvas().actualPixels();
            pass(0.5);
            for (int round = 0; round < kRounds; ++round) {
                table.time("Bucket of an empty layer", [&] { click(studio.canvas()); });
                table.time("Undo ", [&] { studio.act("undo"); });
            }
            paintAllOver(model.current()->doc());
            model.current()->announceChange();
            model.announce();
            studio.canvas().refresh(CanvasPort::AllTiles::yes);
            timeActions(studio, table, copies);
            std::printf("12,000 x 9,000, %s%s\n", fit ? "fitted" : "at 100%",
                        copies ? ", with a safety copy on its way" : "");
            table.print();
            model.current()->savedChange = model.current()->doc().changeCount();
            model.pictures().closeCurrent();
        }
    }
    return 0;
}

} // namespace qirn::bench

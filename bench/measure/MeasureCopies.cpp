#include "Measurements.h"
#include "Pen.h"
#include "PenRecording.h"
#include "StudioWindow.h"

#include "../PaintedPicture.h"
#include "../PlainPass.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Brushes.h"
#include "app/model/OpenPictures.h"
#include "brush/BrushLibrary.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace qirn::bench {

namespace {

constexpr int kRounds = 5;
constexpr double kSecondsBetweenCopies = 1;

/// Milliseconds from when a point was due to when the display had it.
struct Delays {
    double p95, p999;
    int copies;
};

double middle(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void waitUntil(double due, const Stopwatch& watch) {
    constexpr double aTick = 0.001;
    if (const double left = due - watch.seconds(); left > aTick) pass(left - aTick);
    while (watch.seconds() < due) {}
}

/// The hand paints in its own time. Copies are taken as the timer of the studio does it, between strokes.
Delays replay(StudioWindow& studio, const std::vector<PenStroke>& strokes, bool withCopies) {
    Pen pen(studio.canvas());
    DocSession& session = *studio.model().current();
    std::vector<double> delays;
    int copies = 0;
    double copied = 0;
    const double first = strokes.front().front().time;
    const Stopwatch watch;
    for (const PenStroke& stroke : strokes) {
        for (std::size_t i = 0; i < stroke.size(); ++i) {
            const double due = stroke[i].time - first;
            waitUntil(due, watch);
            pen.send(i == 0 ? QEvent::TabletPress : QEvent::TabletMove, stroke[i]);
            studio.waitUntilShown();
            delays.push_back((watch.seconds() - due) * 1000);
        }
        pen.send(QEvent::TabletRelease, stroke.back());
        if (!withCopies || watch.seconds() - copied < kSecondsBetweenCopies) continue;
        Recovery::write(session, Recovery::Synchronously::no);
        copied = watch.seconds();
        ++copies;
    }
    BackgroundQueue::files().finish();
    while (session.doc().canUndo()) studio.act("undo");
    studio.waitUntilShown();
    std::sort(delays.begin(), delays.end());
    const auto share = [&](double part) {
        return delays[static_cast<std::size_t>(part * static_cast<double>(delays.size() - 1))];
    };
    return {share(0.95), share(0.999), copies};
}

} // namespace

int measureCopies(int argc, char** argv, const QString& recording) {
    StudioWindow studio(argc, argv);
    const auto recorded = readPenRecording(recording);
    if (!recorded) {
        std::printf("No pen recording in %s\n", qPrintable(recording));
        return 1;
    }
    const std::vector<PenStroke> strokes = toSixtyFourths(*recorded, 1.5, 400, 300);
    studio.show({kWidth, kHeight});
    studio.model().pictures().add(std::make_shared<DocSession>(paintedPicture(4), QStringLiteral("4K")));
    studio.canvas().actualPixels();
    pass(0.5);
    for (const char* name : {"Soft Round"}) {
        studio.model().brushes().choose(*BrushLibrary::named(QLatin1String(name)));
        std::vector<double> p95[2], p999[2];
        int copies = 0;
        for (int round = 0; round < kRounds; ++round) {
            for (const bool withCopies : {false, true}) {
                const Delays delays = replay(studio, strokes, withCopies);
                p95[withCopies].push_back(delays.p95);
                p999[withCopies].push_back(delays.p999);
                copies += delays.copies;
            }
        }
        std::printf(
            "%s, 4K with five layers, %d rounds; ms from due to screen: 95%% %.2f, 99.9%% %.2f; with %d "
            "safety copies a round 95%% %.2f, 99.9%% %.2f (%.2f and %.2f times)\n",
            name, kRounds, middle(p95[0]), middle(p999[0]), copies / kRounds, middle(p95[1]), middle(p999[1]),
            middle(p95[1]) / middle(p95[0]), middle(p999[1]) / middle(p999[0]));
        std::fflush(stdout);
    }
    return 0;
}

} // namespace qirn::bench

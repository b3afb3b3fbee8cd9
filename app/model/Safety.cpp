#include "app/model/Safety.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/HostWords.h"
#include "app/desktop/Store.h"
#include "app/files/DocSession.h"
#include "app/files/LongTask.h"
#include "app/files/Recovery.h"
#include "app/model/CanvasPort.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"

namespace qirn {

namespace {

constexpr int kAutosaveTick = 10'000; // milliseconds; shorter than the shortest interval

} // namespace

Safety::Safety(PaintModel& model) : model_(model) {
    connect(&timer_, &QTimer::timeout, this, guarding(model_, [this] { autosaveTick(); }));
}

void Safety::startAutosave() {
    timer_.start(kAutosaveTick);
}

void Safety::autosaveTick() {
    const double interval = model_.prefs().autosaveSeconds;
    if (interval <= 0 || model_.longTask().isRunning()) return;
    const QDateTime now = QDateTime::currentDateTime();
    for (const SessionRef& session : model_.pictures().sessions()) {
        const int64_t changes = session->doc().changeCount();
        if (changes == session->savedChange || changes == session->autosavedChange) continue;
        const bool recent = session->lastAutosave.isValid() &&
                            static_cast<double>(session->lastAutosave.msecsTo(now)) < interval * 1000;
        // Floating pixels are in no layer, so a copy made now would lack them.
        const bool floating = model_.transform().isPending() && session.get() == model_.current();
        if (recent || floating || model_.canvas().isBusy()) continue;
        // What fails here has nothing to do with what is painted: it is tried again at the next tick.
        if (!contained([&] { Recovery::write(*session, Recovery::Synchronously::no); })) continue;
        lastAutosaveText_ = tr("Autosaved %1").arg(shortTime(now.time()));
        model_.announce();
    }
}

void Safety::keepWork() {
    model_.saveState();
    model_.store().write(); // first, since it is quick
    for (const SessionRef& session : model_.pictures().sessions()) {
        if (session->isDirty() && !Recovery::isUpToDate(*session))
            Recovery::write(*session, Recovery::Synchronously::no);
    }
    BackgroundQueue::files().finish();
    model_.flushState();
}

} // namespace qirn

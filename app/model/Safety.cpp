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
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QPointer>

namespace qirn {

namespace {

constexpr int kFailuresUntilTold = 3;
constexpr int kLastAttempts = 2;

} // namespace

Safety::Safety(PaintModel& model) : model_(model) {
    connect(&timer_, &QTimer::timeout, this, guarding(model_, [this] { autosaveTick(); }));
}

void Safety::startAutosave(std::chrono::milliseconds tick) {
    timer_.start(tick);
}

void Safety::autosaveTick() {
    if (model_.longTask().isRunning()) {
        isWaiting_ = true;
        takeSoon();
    } else {
        takeDueCopies();
    }
}

void Safety::gestureEnded() {
    const auto& open = model_.pictures().sessions();
    // One that failed waits for the tick.
    const auto fellDue = [this](const SessionRef& session) {
        return isDue(*session) && session->copy.failures == 0;
    };
    if (isWaiting_ || hasNews_ || (timer_.isActive() && std::ranges::any_of(open, fellDue))) takeSoon();
}

void Safety::takeSoon() {
    if (std::exchange(isQueued_, true)) return;
    soon(model_, [this] {
        isQueued_ = false;
        takeDueCopies();
    });
}

bool Safety::isDue(const DocSession& session) const {
    const double interval = model_.prefs().autosaveSeconds;
    const int64_t changes = session.doc().changeCount();
    if (interval <= 0 || changes == session.savedChange || changes == session.autosavedChange) return false;
    if (Recovery::isUnderWay(session)) return false;
    const SafetyCopy& copy = session.copy;
    const auto now = std::chrono::steady_clock::now();
    return copy.failures > 0 || !copy.taken || now - *copy.taken >= std::chrono::duration<double>(interval);
}

void Safety::takeDueCopies() {
    isWaiting_ = false;
    for (const SessionRef& session : model_.pictures().sessions()) {
        if (!isDue(*session)) continue;
        if (model_.canvas().isBusy()) {
            isWaiting_ = true;
            continue;
        }
        const auto settle = guarding(model_, [safety = QPointer(this)] {
            if (safety) safety->settleCopies();
        });
        Recovery::write(*session, Recovery::Synchronously::no, [settle] {
            // Without memory for it the next tick looks.
            contained([&] {
                QMetaObject::invokeMethod(QCoreApplication::instance(), settle, Qt::QueuedConnection);
            });
        });
        if (session->copy.failures > 0) hasNews_ = true;
    }
    settleCopies();
}

void Safety::settleCopies() {
    for (const SessionRef& session : model_.pictures().sessions()) {
        const QDateTime before = session->lastAutosave;
        if (!Recovery::settle(*session)) continue;
        if (session->lastAutosave != before) latest_ = session->lastAutosave;
        hasNews_ = true;
    }
    if (hasNews_ && !model_.canvas().isBusy())
        tell(); // views that draw themselves would be in a stroke's way
}

void Safety::tell() {
    hasNews_ = false;
    for (const SessionRef& session : model_.pictures().sessions()) {
        SafetyCopy& copy = session->copy;
        if (copy.failures < kFailuresUntilTold || std::exchange(copy.isTold, true)) continue;
        model_.messages().flash(tr("Couldn't autosave: %1").arg(copy.reason));
    }
    model_.announce();
}

std::optional<QString> Safety::lastAutosaveText() const {
    const auto& open = model_.pictures().sessions();
    if (std::ranges::any_of(open, [](const SessionRef& session) { return session->copy.failures > 0; }))
        return tr("Not autosaved");
    if (!latest_.isValid()) return std::nullopt;
    return tr("Autosaved %1").arg(shortTime(latest_.time()));
}

bool Safety::isAutosaved(DocSession& session) {
    settleCopies();
    return Recovery::isUpToDate(session);
}

void Safety::keepWork() {
    model_.saveState();
    model_.store().write(); // first, since it is quick
    for (int attempt = 0; attempt < kLastAttempts; ++attempt) {
        for (const SessionRef& session : model_.pictures().sessions()) {
            // One that fails, of memory even for the words, must not cost the others theirs.
            contained([&] {
                Recovery::settle(*session);
                if (session->isDirty() && !Recovery::isUpToDate(*session) && !Recovery::isUnderWay(*session))
                    Recovery::write(*session, Recovery::Synchronously::no);
            });
        }
        BackgroundQueue::files().finish();
    }
    model_.flushState();
}

} // namespace qirn

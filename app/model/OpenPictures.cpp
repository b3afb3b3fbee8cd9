#include "app/model/OpenPictures.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Desktop.h"
#include "app/desktop/Store.h"
#include "app/files/Recovery.h"
#include "app/model/CanvasPort.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/model/PictureFiles.h"
#include "platform/BlockPool.h"
#include "platform/CheckedMath.h"
#include "platform/DescribedError.h"

#include <algorithm>
#include <new>

#include <QDir>
#include <QFileInfo>

namespace qirn {

namespace {

constexpr int64_t kMostCanvasPixels = 900'000'000;
constexpr int kStarterWidth = 1920, kStarterHeight = 1080, kStarterDpi = 72;

QString standardized(const QString& path) {
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : real;
}

} // namespace

DocSession* OpenPictures::current() const {
    const auto found = std::find_if(sessions_.begin(), sessions_.end(),
                                    [&](const SessionRef& s) { return s->id == currentID_; });
    if (found != sessions_.end()) return found->get();
    return sessions_.empty() ? nullptr : sessions_.front().get();
}

std::set<QUuid> OpenPictures::ids() const {
    std::set<QUuid> ids;
    for (const SessionRef& session : sessions_) ids.insert(session->id);
    return ids;
}

// --- New pictures and tabs

void OpenPictures::newDocument(int64_t width, int64_t height, double dpi,
                               std::optional<PaintColor> background, const QString& name) {
    if (width > 0 && height > 0 && width > kMostCanvasPixels / height) return;
    auto doc = std::make_unique<PaintDocument>(width, height, dpi, background);
    add(std::make_shared<DocSession>(std::move(doc), name.isEmpty() ? tr("Untitled") : name));
}

void OpenPictures::ensureDocument() {
    if (!sessions_.empty()) return;
    const auto paper = model_.prefs().newDocTransparent ? std::nullopt : std::optional(PaintColor::white());
    newDocument(kStarterWidth, kStarterHeight, kStarterDpi, paper, {});
}

bool OpenPictures::isUntouchedStarter(const DocSession& session) const {
    return session.fileURL.isEmpty() && !session.isDirty() && session.doc().undoDepth() == 0 &&
           session.name == tr("Untitled");
}

void OpenPictures::add(SessionRef session) {
    model_.finishGesture();
    session->doc().maxUndoSteps = model_.prefs().undoSteps;
    if (sessions_.size() == 1 && isUntouchedStarter(*sessions_.front())) {
        Recovery::discard(*sessions_.front());
        remove(*sessions_.front());
    }
    sessions_.push_back(session);
    currentID_ = session->id;
    model_.canvas().showSession(*session);
    model_.announce();
}

void OpenPictures::addRecovered(SessionRef session) {
    model_.finishGesture();
    const bool replaces = sessions_.size() == 1 && sessions_.front()->fileURL.isEmpty() &&
                          !sessions_.front()->isDirty() && sessions_.front()->doc().undoDepth() == 0;
    if (replaces) {
        Recovery::discard(*sessions_.front());
        remove(*sessions_.front());
    }
    add(std::move(session));
}

void OpenPictures::remove(DocSession& session) {
    model_.canvas().forgetSession(session);
    std::erase_if(sessions_, [&](const SessionRef& s) { return s.get() == &session; });
}

void OpenPictures::select(DocSession& session) {
    if (session.id == currentID_) return;
    model_.finishGesture();
    currentID_ = session.id;
    model_.canvas().showSession(session);
    model_.announce();
}

void OpenPictures::selectNeighbor(int step) {
    const auto count = std::ssize(sessions_);
    for (std::ptrdiff_t i = 0; i < count; ++i)
        if (sessions_[checkedSize(i)].get() == current())
            return select(*sessions_[checkedSize((i + step + count) % count)]);
}

DocSession* OpenPictures::sessionOf(const QString& path) const {
    const QString standard = standardized(path);
    for (const SessionRef& session : sessions_) {
        if (!session->fileURL.isEmpty() && standardized(session->fileURL.toLocalFile()) == standard)
            return session.get();
    }
    return nullptr;
}

// --- Close and quit

bool OpenPictures::close(DocSession& session) {
    const bool wasCurrent = current() == &session;
    if (wasCurrent) model_.finishGesture();
    if (!session.isDirty()) {
        Recovery::discard(session);
    } else {
        const int answer =
            model_.desktop().ask(tr("Save changes to \"%1\"?").arg(session.name),
                                 tr("If you don't save, your changes are moved to the Trash as an "
                                    "autosave copy (you can still get them "
                                    "back from the Trash)."),
                                 {tr("Save…"), tr("Cancel"), tr("Don't Save")}, 1);
        if (answer == 1) return false;
        if (answer == 0 && !model_.files().save(&session, PictureFiles::SaveAs::no)) return false;
        if (answer == 2 && !leaveInTrash(session)) return false;
    }
    remove(session);
    BlockPool::trim();
    if (wasCurrent) {
        currentID_ = sessions_.empty() ? QUuid() : sessions_.back()->id;
        ensureDocument();
        model_.canvas().showSession(*current());
    }
    model_.announce();
    return true;
}

bool OpenPictures::leaveInTrash(DocSession& session) {
    QString reason;
    try {
        Recovery::moveToTrash(session);
        return true;
    } catch (const DescribedError& error) {
        reason = error.description();
    } catch (const std::bad_alloc&) {
        reason = tr("There is not enough memory.");
    }
    if (model_.desktop().ask(tr("Close \"%1\" without a copy?").arg(session.name), reason,
                             {tr("Cancel"), tr("Close")}, 0) == 0)
        return false;
    Recovery::discard(session);
    BackgroundQueue::files().finish(session.id);
    return true;
}

void OpenPictures::closeCurrent() {
    if (DocSession* session = current()) close(*session);
}

bool OpenPictures::shouldQuit() {
    model_.closeSheet();
    model_.finishGesture();
    const std::vector<SessionRef> open = sessions_;
    QStringList closed;
    for (const SessionRef& session : open) {
        if (!session->isDirty()) continue;
        select(*session);
        const auto said = model_.messages().hud();
        if (!close(*session)) {
            if (!closed.isEmpty() && model_.messages().hud() == said) // and not why it could not be saved
                model_.messages().flash(tr("Closed: %1").arg(closed.join(QStringLiteral(", "))));
            return false;
        }
        closed << session->name;
    }
    for (const SessionRef& session : sessions_) Recovery::discard(*session);
    model_.flushState();
    BackgroundQueue::files().finish();
    return true;
}

} // namespace qirn

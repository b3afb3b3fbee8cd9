#pragma once
#include "app/files/DocSession.h"
#include "core/PaintColor.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include <QCoreApplication>
#include <QString>
#include <QUuid>

namespace qirn {

class PaintModel;

/// The pictures that are open, one of them current: how they come, new or from elsewhere, and go.
class OpenPictures {
    Q_DECLARE_TR_FUNCTIONS(qirn::OpenPictures)
public:
    explicit OpenPictures(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    const std::vector<SessionRef>& sessions() const { return sessions_; }
    std::set<QUuid> ids() const;
    DocSession* sessionOf(const QString& path) const; ///< The one whose file that is; null for none.
    DocSession* current() const;                      ///< Null only before the first picture.

    void newDocument(int64_t width, int64_t height, double dpi, std::optional<PaintColor> background,
                     const QString& name);
    /// Where there is no picture: 1920 x 1080 on white, or transparent where the preferences say so.
    void ensureDocument();
    void add(SessionRef session);
    void addRecovered(SessionRef session); ///< Replaces an untouched starter picture.
    void select(DocSession& session);
    void
    selectNeighbor(int step); ///< The tab so many places to the right of the current one, round the ends.

    bool close(DocSession& session); ///< False when the user cancels.
    void closeCurrent();
    bool shouldQuit(); ///< Asks about each picture with unsaved work.

private:
    bool isUntouchedStarter(const DocSession& session) const;
    void remove(DocSession& session);
    /// Moves the unsaved work to the Trash. False where that failed and the user keeps the picture open.
    bool leaveInTrash(DocSession& session);

    PaintModel& model_;
    std::vector<SessionRef> sessions_;
    QUuid currentID_;
};

} // namespace qirn

#pragma once
#include "app/files/CopyLock.h"
#include "app/files/DocSession.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QUuid>

namespace qirn {

/// Safety copies of changed pictures: for each a native document and a small record beside it, named after the
/// session's id, in one folder. Copies are encoded and written in the background in the order in which they were asked
/// for; everything else runs on the main thread. A lock beside a copy tells every other program that its picture is open.
namespace Recovery {

struct Info {
    QString name;
    std::optional<QString> originalPath; ///< Absent for a picture never saved.
    QDateTime date;
    int64_t width = 0; ///< Canvas pixels; 0 where the record was lost.
    int64_t height = 0;
    int64_t layers = 0;
};

struct Item {
    QUuid id;
    Info info;
    QString file;
    std::shared_ptr<CopyLock> lock; ///< Taken before the copy was read, so that no other program offers it.

    QImage thumbnail() const; ///< The preview in the file; null where it cannot be read. On any thread.
};

QString fileURL(const QUuid& id);
QString infoURL(const QUuid& id);

enum class Synchronously { no, yes };
/// Writes a copy of the picture as it was last committed. A failure is logged and never shown; it is tried again after
/// the next change.
void write(DocSession& session, Synchronously synchronously);

/// Whether the copy on disk is of the last commit; waits for one that is being written.
bool isUpToDate(const DocSession& session);

/// Removes a copy, after any write of it that is still waiting.
void discard(const QUuid& id);

/// Moves the copy to the Trash under the picture's name and the time of the copy; restored from there it goes to the
/// picture's folder. That of a session is brought up to date first. Throws what went wrong, with the copy where it was.
void moveToTrash(DocSession& session);
void moveToTrash(const Item& item);

/// The copies that belong to neither an open session nor another running program, newest first.
std::vector<Item> pending(const std::set<QUuid>& excluding);

/// The picture as an unsaved session that keeps the copy's id, so that later copies go on replacing it. Throws a
/// DescribedError.
SessionRef restore(const Item& item);
/// The same of what can still be read of a copy that is damaged, as one that was cut.
SessionRef restoreWhatCanBeRead(const Item& item);

} // namespace Recovery

} // namespace qirn

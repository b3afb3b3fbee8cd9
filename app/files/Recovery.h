#pragma once
#include "app/files/CopyRecord.h"
#include "app/files/DocSession.h"
#include "platform/Progress.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

#include <QImage>
#include <QString>
#include <QUuid>

namespace qirn {

class CopyLock;

/// Safety copies of changed pictures: for each a native document and a small record beside it, named after the
/// session's id, in one folder. Copies are encoded, written and removed in the background, those of one picture in the order
/// in which it was asked for; everything else runs on the main thread. A lock beside a copy tells every other program that
/// its picture is open.
namespace Recovery {

struct Item {
    QUuid id;
    Info info;
    QString file;
    std::shared_ptr<CopyLock> lock; ///< Taken before the copy was read, so that no other program offers it.

    QImage thumbnail() const; ///< The preview in the file; null where it cannot be read. On any thread.
    bool mayBeOpenElsewhere() const; ///< No locks are to be had here, so that nobody can tell.
};

QString fileURL(const QUuid& id);
QString infoURL(const QUuid& id);
QString lockURL(const QUuid& id);

enum class Synchronously { no, yes };
/// Hands over a copy of the picture as it was last committed, in place of one that waits to be written. A failure is logged,
/// and `settle` takes note of it. `ended` is called when that is worth while, on any thread.
void write(DocSession& session, Synchronously synchronously, std::function<void()> ended = {});
/// Takes note of the copies that have been written, or have failed, since the last time: only from then on does the session
/// say that they are on disk. Whether there were any.
bool settle(DocSession& session);

bool isUnderWay(
    const DocSession& session); ///< A copy of the last commit was handed over and not yet settled.
bool isUpToDate(const DocSession& session); ///< A copy of the last commit is on disk.

/// Removes the copy, if there can be one, after a write of it that has begun. The lock goes with it.
void discard(DocSession& session);

/// Moves the copy to the Trash under the picture's name and the time of the copy; restored from there it goes to the
/// picture's folder. That of a session is brought up to date first. Throws what went wrong, with the copy where it was.
void moveToTrash(DocSession& session);
void moveToTrash(const Item& item);

/// The copies that belong to neither an open session nor another running program, newest first. Sweeps what is left of
/// others without a copy.
std::vector<Item> pending(const std::set<QUuid>& excluding);

/// The picture as an unsaved session that keeps the copy's id, so that later copies go on replacing it. Throws a
/// DescribedError. On any thread; the session is the main thread's.
SessionRef restore(const Item& item, const Progress& progress = {});
/// The same of what can still be read of a copy that is damaged, as one that was cut.
SessionRef restoreWhatCanBeRead(const Item& item, const Progress& progress = {});

} // namespace Recovery

} // namespace qirn

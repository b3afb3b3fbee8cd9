#pragma once
#include "app/files/CopyRecord.h"

#include <memory>
#include <mutex>
#include <optional>

#include <QString>
#include <QUuid>

namespace qirn {

class CopyLock;
struct DocumentSnapshot;

/// A picture's safety copy on disk: a native document, its record, and the lock that tells every other program that the
/// picture is open. For jobs in the background, of which those of one picture run one at a time. Each throws what went
/// wrong.
class CopyFiles {
public:
    /// Those of this id in the folder `AppFolders::autosave`, as it is now. `lock` where it is held already.
    explicit CopyFiles(const QUuid& id, std::shared_ptr<CopyLock> lock = {});

    /// The record comes first where there is none, so that no copy is left without its name, and is renewed afterwards.
    void write(const DocumentSnapshot& picture, const Recovery::Info& info);
    /// The picture is about to be written to this file, its own or another: from now on the record names it and what is
    /// there now, so that a copy that is left over is told as one of a picture that was saved since. On any thread, also
    /// while the copy is being written; a failure is nobody's loss.
    void noteSaving(const QString& path);
    void saveEnded();                             ///< Records are of the session again.
    void remove();                                ///< All three.
    void moveToTrash(const Recovery::Info& info); ///< The document, under the picture's name; the others go.

private:
    struct Original {
        QString path;
        FileStamp stamp;
    };
    void writeRecord(Recovery::Info info);
    void removeRecordAndLock();

    QString document_, record_, lockPath_;
    std::shared_ptr<CopyLock> lock_; // null: not taken yet
    std::mutex mutex_;               // of the record and of
    std::optional<Original> saving_; // in place of the session's file
};

} // namespace qirn

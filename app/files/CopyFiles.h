#pragma once
#include "app/files/CopyRecord.h"

#include <memory>

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
    /// Renews the record of a copy that is there; a failure is nobody's loss.
    void renewRecord(const Recovery::Info& info);
    void remove();                                ///< All three.
    void moveToTrash(const Recovery::Info& info); ///< The document, under the picture's name; the others go.

private:
    void writeRecord(const Recovery::Info& info) const;
    void removeRecordAndLock();

    QString document_, record_, lockPath_;
    std::shared_ptr<CopyLock> lock_; // null: not taken yet
};

} // namespace qirn

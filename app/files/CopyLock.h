#pragma once
#include <memory>

#include <QByteArray>
#include <QString>

namespace qirn {

/// A kernel lock on a file beside a safety copy: its holder has the picture open. The kernel releases it when the process
/// ends, however that happens; the holder removes the file when it releases the lock.
class CopyLock {
public:
    /// Null while somebody else holds the lock at this path, in this process or another. Where the file system has no locks
    /// or no room for the file, the result is a lock that excludes nobody.
    static std::shared_ptr<CopyLock> take(const QString& path);

    CopyLock(QByteArray path, int file) : path_(std::move(path)), file_(file) {} ///< Owns `file`; see `take`.
    CopyLock(const CopyLock&) = delete;
    CopyLock& operator=(const CopyLock&) = delete;
    ~CopyLock();

    /// False for one that excludes nobody, as when its file was removed by somebody. Asks the disk.
    bool isHeld() const;

private:
    QByteArray path_;
    int file_; // open and locked; -1: none
};

} // namespace qirn

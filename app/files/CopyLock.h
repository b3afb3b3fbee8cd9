#pragma once
#include <memory>

#include <QByteArray>
#include <QString>

namespace qirn {

/// A lock of the kernel's on a file beside a safety copy: whoever holds it has the picture open. It goes with its
/// process, however that ends; the file goes when the holder lets go.
class CopyLock {
public:
    /// Null while another holds the lock at this path, be it in this program. Where the file system has no locks, or no
    /// room for the file, the lock that comes back keeps nobody away.
    static std::shared_ptr<CopyLock> take(const QString& path);

    CopyLock(QByteArray path, int file) : path_(std::move(path)), file_(file) {} ///< Owns `file`; see `take`.
    CopyLock(const CopyLock&) = delete;
    CopyLock& operator=(const CopyLock&) = delete;
    ~CopyLock();

    bool isHeld() const { return file_ >= 0; } ///< It keeps others away.

private:
    QByteArray path_;
    int file_; // open and locked; -1: none
};

} // namespace qirn

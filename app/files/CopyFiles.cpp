#include "app/files/CopyFiles.h"

#include "app/desktop/FileTypes.h"
#include "app/desktop/Trash.h"
#include "app/files/CopyLock.h"
#include "app/files/Recovery.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "platform/files/FileStamp.h"
#include "platform/files/Folders.h"

#include <cerrno>

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace qirn {

namespace {

/// Throws FileError, but not for a file that is not there.
void removeFile(const QString& path) {
    const QByteArray name = bytesOfPath(path);
    while (FileCalls::inUse().unlink(name.constData()) < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return;
        if (errno != EINTR) throw FileError(errno);
    }
}

FileStamp stampOrNone(const QString& path) {
    return FileStamp::at(path).value_or(FileStamp());
}

} // namespace

CopyFiles::CopyFiles(const QUuid& id, std::shared_ptr<CopyLock> lock)
    : document_(Recovery::fileURL(id)),
      record_(Recovery::infoURL(id)),
      lockPath_(Recovery::lockURL(id)),
      lock_(std::move(lock)) {}

void CopyFiles::write(const DocumentSnapshot& picture, const Recovery::Info& taken) {
    // Somebody may have cleared the folder away, or the lock in it.
    makeOwnFolder(QFileInfo(document_).path());
    if (!lock_ || !lock_->isHeld()) lock_ = CopyLock::take(lockPath_);
    if (!lock_) throw FileError(EBUSY); // another program has this copy
    Recovery::Info info = taken;
    if (info.originalPath) info.originalStamp = stampOrNone(*info.originalPath);
    const bool hadRecord = isThere(record_);
    if (!hadRecord) writeRecord(info);
    writeOwnFile(document_, bytesOf(PaintFile::encode(picture, PaintFile::kPreviewSide)),
                 UsersLinks::replaced);
    if (hadRecord) writeRecord(info);
}

void CopyFiles::writeRecord(Recovery::Info info) {
    const std::lock_guard lock(mutex_);
    if (saving_) {
        info.originalPath = saving_->path;
        info.originalStamp = saving_->stamp;
    }
    writeOwnFile(record_, bytesOf(Recovery::recordOf(info)), UsersLinks::replaced);
}

void CopyFiles::noteSaving(const QString& path) {
    {
        const std::lock_guard lock(mutex_);
        saving_ = Original{path, stampOrNone(path)};
    }
    try {
        if (const auto info = Recovery::readRecord(record_)) writeRecord(*info);
    } catch (const FileError&) {
        // It only makes what the list of copies says less exact.
    }
}

void CopyFiles::saveEnded() {
    const std::lock_guard lock(mutex_);
    saving_.reset();
}

void CopyFiles::remove() {
    if (!lock_) return; // nothing was written, or what is there is another program's
    removeFile(document_);
    removeRecordAndLock();
}

void CopyFiles::moveToTrash(const Recovery::Info& info) {
    const QString time = QLocale().toString(info.date.toLocalTime(), QStringLiteral("d MMM hh.mm"));
    const QString name =
        FileTypes::fileName(QCoreApplication::translate("Recovery", "%1 (autosaved %2)").arg(info.name, time),
                            QLatin1String(PaintFile::fileExtension));
    const QString folder = info.originalPath
                               ? QFileInfo(*info.originalPath).path()
                               : QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    qirn::moveToTrash(document_, name, folder);
    removeRecordAndLock();
}

void CopyFiles::removeRecordAndLock() {
    try {
        removeFile(record_);
        const bool removesItsFile = lock_->isHeld();
        lock_.reset();
        if (removesItsFile) return;
        // Where there are no locks the file would stay.
        const auto left = CopyLock::take(lockPath_);
        if (left && !left->isHeld()) removeFile(lockPath_);
    } catch (const FileError&) {
        // A record alone means nothing; the next listing sweeps it.
    }
    lock_.reset();
}

} // namespace qirn

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

} // namespace

CopyFiles::CopyFiles(const QUuid& id, std::shared_ptr<CopyLock> lock)
    : document_(Recovery::fileURL(id)),
      record_(Recovery::infoURL(id)),
      lockPath_(Recovery::lockURL(id)),
      lock_(std::move(lock)) {}

void CopyFiles::write(const DocumentSnapshot& picture, const Recovery::Info& info) {
    // Somebody may have cleared the folder away.
    FileCalls::inUse().mkdir(bytesOfPath(QFileInfo(document_).path()).constData(), 0700);
    if (!lock_ || !lock_->isHeld()) lock_ = CopyLock::take(lockPath_);
    if (!lock_) throw FileError(EBUSY); // another program has this copy
    const bool hadRecord = isThere(record_);
    if (!hadRecord) writeRecord(info);
    writeOwnFile(document_, bytesOf(PaintFile::encode(picture, PaintFile::kPreviewSide)),
                 UsersLinks::replaced);
    if (hadRecord) writeRecord(info);
}

void CopyFiles::writeRecord(const Recovery::Info& info) const {
    writeOwnFile(record_, bytesOf(Recovery::recordOf(info)), UsersLinks::replaced);
}

void CopyFiles::renewRecord(const Recovery::Info& info) {
    if (isThere(document_)) writeRecord(info);
}

void CopyFiles::remove() {
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
    } catch (const FileError&) {
        // A record alone means nothing; the next listing sweeps it.
    }
    lock_.reset();
}

} // namespace qirn

#include "UserFile.h"

#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/ReadFile.h"

#include <cerrno>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace qirn {

void UserFile::load(const std::function<bool(std::span<const uint8_t>)>& decode) {
    try {
        unreadable_ = !decode(bytesOf(readFile(path_)));
    } catch (const ReadError& error) {
        unreadable_ = error.systemError() != ENOENT;
    }
}

void UserFile::save(const QByteArray& bytes) {
    if (unreadable_) {
        const QFileInfo info(path_);
        const QString stamp =
            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh.mm.ss.zzz"));
        const QString aside = info.dir().filePath(
            QStringLiteral("%1 (unreadable, %2).%3").arg(info.completeBaseName(), stamp, info.suffix()));
        if (!QFile::rename(path_, aside)) return;
        unreadable_ = false;
    }
    try {
        writeAtomically(path_, bytesOf(bytes));
    } catch (const FileError&) {
        // What was to be kept stays in use; the next change tries again.
    }
}

} // namespace qirn

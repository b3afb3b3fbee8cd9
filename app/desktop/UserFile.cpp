#include "app/desktop/UserFile.h"

#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"

#include <cerrno>
#include <cstdio>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace qirn {

bool UserFile::load(const std::function<bool(std::span<const uint8_t>)>& decode) {
    try {
        unreadable_ = !decode(bytesOf(readFile(path_)));
    } catch (const ReadError& error) {
        if (error.systemError() == ENOENT) return false;
        unreadable_ = true;
    }
    return true;
}

bool UserFile::save(const QByteArray& bytes) {
    if (unreadable_) {
        const QFileInfo info(path_);
        const QString stamp =
            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh.mm.ss.zzz"));
        const QString aside = info.dir().filePath(
            QStringLiteral("%1 (unreadable, %2).%3").arg(info.completeBaseName(), stamp, info.suffix()));
        const int moved =
            std::rename(QFile::encodeName(path_).constData(), QFile::encodeName(aside).constData());
        if (moved != 0 && errno != ENOENT) return false;
        unreadable_ = false;
    }
    try {
        writeOwnFile(path_, bytesOf(bytes), UsersLinks::followed);
        return true;
    } catch (const FileError&) {
        return false; // the values stay in use, and the next change tries again
    }
}

} // namespace qirn

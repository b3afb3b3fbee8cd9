#include "Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace qirn {

namespace {

/// Where there is no Trash and none can be made, Qt moves a file to ./files of the working directory and reports
/// success. So the Trash of the user's own disk is made first, private as desktops make it.
bool makeTrashFolder() {
#ifdef Q_OS_LINUX
    const QString home = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString trash = home + QStringLiteral("/Trash");
    if (home.isEmpty() || !QDir().mkpath(home)) return false;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    return QFileInfo(trash).isDir() || QDir().mkdir(trash, onlyOwner);
#else
    return true;
#endif
}

/// Takes a file back out of the working directory, where it landed for want of a Trash on its own disk.
void takeBack(const QString& misplaced, const QString& path) {
    QFile::rename(misplaced, path);
    const QString name = QFileInfo(misplaced).fileName();
    QFile::remove(QStringLiteral("info/%1.trashinfo").arg(name));
}

} // namespace

bool moveToTrash(const QString& path) {
    if (!makeTrashFolder()) return false;
    QString inTrash;
    if (!QFile::moveToTrash(path, &inTrash)) return false;
    if (QDir::isAbsolutePath(inTrash)) return true;
    if (!inTrash.isEmpty()) takeBack(inTrash, path);
    return false;
}

} // namespace qirn

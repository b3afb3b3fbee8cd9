#include "Trash.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace qirn {

bool moveToTrash(const QString& path) {
#ifdef Q_OS_LINUX
    // Without a data home Qt reports success and leaves the file in ./files of the working directory.
    const QString home = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (home.isEmpty() || !QDir().mkpath(home)) return false;
#endif
    QString inTrash;
    if (!QFile::moveToTrash(path, &inTrash)) return false;
    return !inTrash.isEmpty() && QFile::exists(inTrash) && QDir::isAbsolutePath(inTrash);
}

} // namespace qirn

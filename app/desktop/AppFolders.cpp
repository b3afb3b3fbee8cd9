#include "app/desktop/AppFolders.h"

#include "platform/files/Folders.h"

#include <QDir>
#include <QStandardPaths>

namespace qirn {

namespace {

QString& baseOverride() {
    static QString folder;
    return folder;
}

QString made(const QString& folder) {
    makeOwnFolder(folder);
    return folder;
}

} // namespace

void AppFolders::setBaseOverride(const QString& folder) {
    baseOverride() = folder;
}

QString AppFolders::base() {
    if (!baseOverride().isEmpty()) return baseOverride();
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return made(QDir(data).filePath(QStringLiteral("Qirn Paint")));
}

QString AppFolders::autosave() {
    return made(QDir(base()).filePath(QStringLiteral("Autosave")));
}
QString AppFolders::storeFile() {
    return QDir(base()).filePath(QStringLiteral("Preferences.json"));
}
QString AppFolders::olderStoreFile() {
    const QString settings = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir(settings).filePath(QStringLiteral("Qirn Paint/Qirn Paint.ini"));
}
QString AppFolders::brushesFile() {
    return QDir(base()).filePath(QStringLiteral("My Brushes.json"));
}
QString AppFolders::palettesFile() {
    return QDir(base()).filePath(QStringLiteral("My Palettes.json"));
}

} // namespace qirn

#include "UserBrushes.h"

#include "brush/BrushFile.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace qirn {

std::vector<BrushSettings> UserBrushFile::load() {
    QFile file(path_);
    if (!file.exists()) return {};
    unreadable_ = true;
    if (!file.open(QIODevice::ReadOnly)) return {};
    const auto brushes = BrushFile::decode(bytesOf(file.readAll()));
    if (!brushes) return {};
    unreadable_ = false;
    return *brushes;
}

void UserBrushFile::save(const std::vector<BrushSettings>& brushes) {
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
        writeAtomically(path_, bytesOf(BrushFile::encode(brushes)));
    } catch (const FileError&) {
        // The presets stay in use; the next change tries again.
    }
}

} // namespace qirn

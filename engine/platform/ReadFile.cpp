#include "platform/ReadFile.h"

#include <QFile>

namespace qirn {

QByteArray readFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) throw ReadError(file.errorString());
    QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) throw ReadError(file.errorString());
    return bytes;
}

} // namespace qirn

#pragma once
#include <QByteArray>
#include <QString>

namespace qirn {

/// A path as the system has it, of any bytes, as text. A byte that is no UTF-8 is kept as a lone surrogate, U+DC80 to
/// U+DCFF, which no text has, so that the file is found again and keeps its name.
QString pathFromBytes(const QByteArray& bytes);
QByteArray bytesOfPath(const QString& path);

/// The absolute path; a relative one starts at the working folder.
QString absolutePath(const QString& path);

} // namespace qirn

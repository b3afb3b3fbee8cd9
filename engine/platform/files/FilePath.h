#pragma once
#include <optional>

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace qirn {

/// A path as the system has it, of any bytes, as text. A byte that is no UTF-8 is kept as a lone surrogate, U+DC80 to
/// U+DCFF, which no text has, so that the file is found again and keeps its name.
QString pathFromBytes(const QByteArray& bytes);
QByteArray bytesOfPath(const QString& path);

/// The address of a file as lists and drags of desktops have it, of ASCII signs alone: "file:///a%20b".
QString addressOfPath(const QString& path);
/// The path in such an address; nothing for one of another kind or machine.
std::optional<QString> pathOfAddress(const QUrl& address);

bool isThere(const QString& path); ///< A file, folder or whatever it is.

/// The absolute path; a relative one starts at the working folder.
QString absolutePath(const QString& path);

} // namespace qirn

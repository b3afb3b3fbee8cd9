#pragma once
#include <QString>

namespace qirn {

/// Adds a file to the desktop's list of recently used documents (freedesktop.org's recently-used.xbel), which file
/// managers and open panels show. A list that is not understood stays as it is; a failure is not reported.
void noteRecentFile(const QString& path);

/// The list's text with the file added, or unchanged when it is listed already or is no such list.
QString recentListWith(const QString& list, const QString& path, const QString& utcTime);

} // namespace qirn

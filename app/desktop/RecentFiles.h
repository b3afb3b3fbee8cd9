#pragma once
#include <QString>

namespace qirn {

/// Puts a file into the desktop's list of recently used documents (freedesktop.org's recently-used.xbel), which file
/// managers and open panels show. A list that is not understood stays as it is; a failure is not reported.
void noteRecentFile(const QString& path);

/// The list's text with the file as one used at that time: added, or its entry renewed. Unchanged where it is no such list.
QString recentListWith(const QString& list, const QString& path, const QString& utcTime);

} // namespace qirn

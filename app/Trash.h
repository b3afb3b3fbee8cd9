#pragma once
#include <QString>

namespace qirn {

/// Moves a file to the desktop's Trash, from where the user can take it back; false, with the file where it was,
/// when there is no Trash to be had.
bool moveToTrash(const QString& path);

} // namespace qirn

#pragma once
#include "platform/files/AtomicFile.h"

#include <QString>

namespace qirn {

/// Moves a file to the Trash by the rules that the desktops share (freedesktop.org): to the user's own where it is on the
/// file's disk, and else to the one of that disk. There it is called `name`, shortened and numbered where it must be, and
/// counts as deleted from `folder`, where the desktop puts it back. Throws FileError, with the file where it was.
void moveToTrash(const QString& path, const QString& name, const QString& folder);

/// Whether the file, or the folder that it is in, was moved to a Trash: this user's, or that of any disk.
bool isInTrash(const QString& path);

} // namespace qirn

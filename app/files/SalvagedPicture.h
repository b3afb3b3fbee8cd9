#pragma once
#include "app/files/DocSession.h"
#include "platform/Progress.h"

#include <QString>

namespace qirn {

/// What can still be read of a damaged document at a path, as an unsaved picture without a file; its remark names the
/// layers that lost tiles. Throws ReadError or PaintFileError.
SessionRef salvagedPicture(const QString& path, const QString& name, const QUuid& id,
                           const Progress& progress);

/// Whether a document was refused for parts of it alone, so that the rest can be read.
bool canBeSalvaged(const std::exception& error);

} // namespace qirn

#pragma once
#include <QStringList>

namespace qirn {

/// Runs `--export` with all of the program's arguments; the process's exit code: 0 when every picture was written, 1 when
/// one was not, 2 when it was called in a way that makes no sense.
int exportPictures(const QStringList& arguments);

} // namespace qirn

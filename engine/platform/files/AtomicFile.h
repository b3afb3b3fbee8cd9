#pragma once
#include "platform/Progress.h"
#include "platform/files/FileError.h"
#include "platform/files/FileStamp.h"

#include <cstdint>
#include <optional>
#include <span>

#include <QString>

namespace qirn {

/// Makes the file at `path` hold exactly these bytes, or throws `FileError` and leaves what was there untouched,
/// with nothing beside it. At no moment, a power cut included, does the path name a half-written file.
///
/// A symbolic link stays and the file that it names is replaced; other names of that file (hard links) keep the old
/// one. A file that is replaced hands down its access as `FileAccess` has it; one that is write-protected is refused.
/// Only when the disk fails at the very end, at flushing the new name, is the new file in place already: the
/// error then says that it may not outlast a power cut. A cancel, which is asked for up to the moment before the new
/// file takes its place, leaves the old one as well.
///
/// Whatever a killed process leaves beside the target is removed by the next one that writes it (`TemporaryFile`).
/// The result is the stamp of the new file, of no other that has taken its name since; nothing where the disk does not
/// tell.
std::optional<FileStamp> writeAtomically(const QString& path, std::span<const uint8_t> bytes,
                                         const Progress& progress = {});

/// What becomes of a symbolic link under the name of an own file: replaced, or followed if the user made it and
/// where it leads is the user's too.
enum class UsersLinks { replaced, followed };

/// The same for a file that the application keeps for itself: nobody else may read it, whatever was there before.
void writeOwnFile(const QString& path, std::span<const uint8_t> bytes, UsersLinks links);

} // namespace qirn

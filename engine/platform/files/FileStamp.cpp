#include "platform/files/FileStamp.h"

#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"

namespace qirn {

std::optional<FileStamp> FileStamp::at(const QString& path) {
    struct stat facts {};
    if (FileCalls::inUse().stat(bytesOfPath(path).constData(), &facts) < 0) return std::nullopt;
    return of(facts);
}

} // namespace qirn

#pragma once
#include "platform/DescribedError.h"

#include <cerrno>

#include <QString>

namespace qirn {

/// A file that could not be written; `description` says why in words for the user.
class FileError : public DescribedError {
public:
    explicit FileError(int systemError); ///< An `errno` value.
    static FileError notFlushed(int systemError);
    int systemError() const { return systemError_; }
    bool isWritten() const { return isWritten_; } ///< The new file is in its place: it is only not flushed.

private:
    FileError(int systemError, const QString& description);
    int systemError_;
    bool isWritten_ = false;
};

/// The result of a system call that reports failure by a negative number and `errno`; made again when a signal interrupted
/// it.
template <class Call> auto retried(Call call) {
    while (true) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

/// The same, whose failure is thrown as FileError.
template <class Call> auto checked(Call call) {
    const auto result = retried(call);
    if (result < 0) throw FileError(errno);
    return result;
}

} // namespace qirn

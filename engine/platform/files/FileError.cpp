#include "platform/files/FileError.h"

#include <system_error>

#include <QCoreApplication>

namespace qirn {

namespace {

struct Reason {
    int error;
    const char* text;
};
constexpr Reason kReasons[] = {
    {ENOSPC, QT_TRANSLATE_NOOP("FileError", "There is not enough space on the disk.")},
    {EDQUOT, QT_TRANSLATE_NOOP("FileError", "Your share of the disk is used up.")},
    {EACCES, QT_TRANSLATE_NOOP("FileError", "You do not have permission to write here.")},
    {EPERM, QT_TRANSLATE_NOOP("FileError", "You do not have permission to write here.")},
    {EROFS, QT_TRANSLATE_NOOP("FileError", "The disk is read-only.")},
    {ENOENT, QT_TRANSLATE_NOOP("FileError", "The folder does not exist.")},
    {ENOTDIR, QT_TRANSLATE_NOOP("FileError", "The folder does not exist.")},
    {EISDIR, QT_TRANSLATE_NOOP("FileError", "A folder of this name is in the way.")},
    {ENAMETOOLONG, QT_TRANSLATE_NOOP("FileError", "The name is too long.")},
    {EBUSY, QT_TRANSLATE_NOOP("FileError", "Another program is using the file.")},
    {EIO, QT_TRANSLATE_NOOP("FileError", "The disk reported an error.")},
};

QString reasonFor(int error) {
    for (const Reason& reason : kReasons) {
        if (reason.error == error) return QCoreApplication::translate("FileError", reason.text);
    }
    return QCoreApplication::translate("FileError", "The file could not be written (%1).")
        .arg(QString::fromLocal8Bit(std::generic_category().message(error).c_str()));
}

} // namespace

FileError::FileError(int systemError) : FileError(systemError, reasonFor(systemError)) {}

FileError::FileError(int systemError, const QString& description)
    : DescribedError(description),
      systemError_(systemError) {}

FileError FileError::notFlushed(int systemError) {
    FileError error(systemError,
                    QCoreApplication::translate("FileError", "The file is written, but the disk reported "
                                                             "an error: it may not outlast a power cut."));
    error.isWritten_ = true;
    return error;
}

} // namespace qirn

#pragma once
#include "platform/files/FileStamp.h"

#include <cstdint>
#include <optional>

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace qirn {

namespace Recovery {

/// What stands beside a safety copy in a small file of JSON.
struct Info {
    QString name;
    std::optional<QString> originalPath; ///< Absent for a picture never saved.
    /// Of the file there when the copy was taken, all 0 where there was none; nothing where that is not known.
    std::optional<FileStamp> originalStamp;
    QDateTime date;
    int64_t width = 0; ///< Canvas pixels; 0 where the record was lost.
    int64_t height = 0;
    int64_t layers = 0;

    bool isSavedSince() const; ///< The file has been written after the copy was taken. Asks the disk.
};

QByteArray recordOf(const Info& info);
std::optional<Info> readRecord(const QString& path); ///< Nothing where there is none that can be understood.

} // namespace Recovery

} // namespace qirn

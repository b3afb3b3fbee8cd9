#pragma once
#include "platform/DescribedError.h"

#include <QByteArray>
#include <QString>

namespace qirn {

/// A file that could not be read, in the system's words.
class ReadError : public DescribedError {
public:
    explicit ReadError(const QString& description) : DescribedError(description) {}
};

/// The whole content of a file; throws ReadError.
QByteArray readFile(const QString& path);

} // namespace qirn

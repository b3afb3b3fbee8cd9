#pragma once
#include "platform/DescribedError.h"

#include <QString>

namespace qirn {

/// Why a native document, or a layered one of another program, was refused.
class PaintFileError : public DescribedError {
public:
    static PaintFileError notPaintFile();
    static PaintFileError tooLarge();
    static PaintFileError damaged(const QString& detail);              ///< "manifest", "canvas size", ...
    static PaintFileError damagedTile(int64_t slot, const char* what); ///< " data", " length"

    bool hasSoundParts() const {
        return hasSoundParts_;
    } ///< What is damaged are tiles: the rest can be read.

private:
    bool hasSoundParts_ = false;
    using DescribedError::DescribedError;
};

/// A picture that could not be turned into a file's bytes, or bytes that are no picture.
class ExportError : public DescribedError {
public:
    /// As the user reads it in the list of formats.
    static ExportError cannotEncode(const QString& formatName);
    static ExportError tooLongASide(const QString& formatName, int64_t longest);
    static ExportError cannotRead();

private:
    using DescribedError::DescribedError;
};

} // namespace qirn

#pragma once
#include "app/desktop/Desktop.h"
#include "formats/ImageExport.h"

#include <QString>

namespace qirn {

/// The kinds of files that the panels offer, and how file names are made.
namespace FileTypes {

FileType native();        ///< The layered document.
QList<FileType> open();   ///< Everything that can be opened, the layered document first.
QList<FileType> import(); ///< The same without it: pictures that can become a layer.
QList<FileType> brushes();
FileType gpl();
FileType aco();
QList<FileType> palettes(); ///< These and lists of hexadecimal codes.
FileType exported(ExportFormat format);

bool isNative(const QString& path); ///< By its extension, in any case.

/// Whether a name ends like a picture or document of another kind than that.
bool isOtherPicture(const QString& name, const FileType& type);

/// A file name to propose for a picture's name, of at most 255 bytes: characters that no name has, or that would lead into
/// another folder, are replaced.
QString fileName(const QString& name, const QString& extension);

/// The path, with the type's first extension added where it ends in none of them.
QString withExtension(const QString& path, const FileType& type);

} // namespace FileTypes

} // namespace qirn

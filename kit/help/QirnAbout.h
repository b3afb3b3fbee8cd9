#pragma once
#include <QString>

/// What the program is, in a window of its own.
namespace qirn::QirnAbout {

QString version(); ///< As "Version 1.0 (1)", with the build number.

/// More about the application, below the maker's lines, in the marks of a help topic's body.
void setExtraLines(const QString& lines);

void show();

} // namespace qirn::QirnAbout

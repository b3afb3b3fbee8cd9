#pragma once
#include <QString>
#include <QStringList>

namespace qirn {

/// What the arguments of the program ask for.
struct CommandLine {
    /// The modes other than `none` open no window.
    enum class Mode { none, selfTest, benchmark, makeSample, help, version };
    Mode mode = Mode::none;
    QString samplePath; ///< Of `makeSample`.
    QStringList files;  ///< Absolute paths to open, in order.

    /// The first argument is the program's name. What does not begin with "-", and everything behind "--", is a path or the
    /// address of a file; what else begins with "-" and is none of the modes is ignored. Of several modes the one that
    /// comes first in the list above counts.
    static CommandLine parsed(const QStringList& arguments);

    static QString help();    ///< How the program is called, several lines.
    static QString version(); ///< One line.
};

} // namespace qirn

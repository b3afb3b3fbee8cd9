#pragma once
#include "app/model/PaintSheet.h"

#include <optional>

#include <QString>
#include <QStringList>

namespace qirn {

/// What the arguments of the program ask for.
struct CommandLine {
    /// The first three open the studio, the others no window.
    enum class Mode {
        none,
        newCanvas,
        recover,
        selfTest,
        benchmark,
        makeSample,
        exportPictures,
        help,
        version
    };
    Mode mode = Mode::none;
    QString samplePath; ///< Of `makeSample`.
    QStringList words;  ///< All of them, with the program's name.
    QStringList files;  ///< Absolute paths to open, in order.

    bool opensStudio() const { return mode <= Mode::recover; }
    std::optional<PaintSheet::Kind> sheet() const; ///< What the studio is to show, once the files are open.

    /// The first argument is the program's name. What does not begin with "-", and everything behind "--", is a path or the
    /// address of a file; what else begins with "-" and is none of the modes is ignored. Of several modes the one that
    /// comes first in the manual's rows counts.
    static CommandLine parsed(const QStringList& arguments);
    static const char* optionOf(PaintSheet::Kind sheet); ///< "" for one that no option asks for.

    static QString help();    ///< How the program is called, several lines.
    static QString version(); ///< One line.
};

} // namespace qirn

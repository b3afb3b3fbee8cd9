#pragma once
#include "app/desktop/UserFile.h"
#include "formats/palettes/Palette.h"

#include <vector>

#include <QString>

namespace qirn {

/// The file that keeps the user's own palettes.
class UserPaletteFile {
public:
    explicit UserPaletteFile(QString path) : file_(std::move(path)) {}

    std::vector<Palette> load();                     ///< Empty when there is no file or it cannot be read.
    void save(const std::vector<Palette>& palettes); ///< A failure is not reported.

private:
    UserFile file_;
};

/// The user's own copy of a palette that must not be changed.
Palette ownCopyOf(const Palette& palette);

} // namespace qirn

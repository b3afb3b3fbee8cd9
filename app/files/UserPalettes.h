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

/// A copy of a built-in palette as the user's own.
Palette ownCopyOf(const Palette& palette);

} // namespace qirn

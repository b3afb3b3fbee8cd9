#pragma once
#include "app/desktop/UserFile.h"
#include "brush/BrushSettings.h"

#include <vector>

#include <QString>

namespace qirn {

inline constexpr const char* kUserBrushCategory = "My Brushes";

/// The file that keeps the user's own presets.
class UserBrushFile {
public:
    explicit UserBrushFile(QString path) : file_(std::move(path)) {}

    std::vector<BrushSettings> load(); ///< Empty when there is no file or it cannot be read.
    void save(const std::vector<BrushSettings>& brushes); ///< A failure is not reported.

private:
    UserFile file_;
};

/// The presets of a brush file, as the user's own: each with a fresh id, so that none equals a preset that is there.
/// Nothing when the file as a whole cannot be read.
std::optional<std::vector<BrushSettings>> brushesToImport(std::span<const uint8_t> text);

} // namespace qirn

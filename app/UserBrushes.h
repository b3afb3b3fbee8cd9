#pragma once
#include "brush/BrushSettings.h"

#include <vector>

#include <QString>

namespace qirn {

inline constexpr const char* kUserBrushCategory = "My Brushes";

/// The file that keeps the user's own presets. A file that is there but does not decode is never overwritten: the
/// first save moves it aside under a name that tells so.
class UserBrushFile {
public:
    explicit UserBrushFile(QString path) : path_(std::move(path)) {}

    std::vector<BrushSettings> load(); ///< Empty when there is no file or it cannot be read.
    void save(const std::vector<BrushSettings>& brushes); ///< A failure is not reported.

private:
    QString path_;
    bool unreadable_ = false;
};

} // namespace qirn

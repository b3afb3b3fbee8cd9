#pragma once
#include "core/PaintColor.h"

#include <cstddef>
#include <vector>

namespace qirn {

class PaintModel;
class Store;

inline constexpr std::size_t kRecentColors = 18;

/// The list with the color at its front: no two of the same red, green and blue, at most `kRecentColors`.
std::vector<PaintColor> withRecent(const std::vector<PaintColor>& recent, const PaintColor& color);

/// The paint color, the second color and the recent ones. All are opaque.
class Colors {
public:
    explicit Colors(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    const PaintColor& primary() const { return primary_; }
    const PaintColor& secondary() const { return secondary_; }
    const std::vector<PaintColor>& recent() const { return recent_; } ///< Newest first.

    void
    setPrimary(const PaintColor& color); ///< Without adding to the recent ones, as while a slider is dragged.
    enum class AddRecent { no, yes };
    void pick(const PaintColor& color, AddRecent addRecent);
    void pushRecent(const PaintColor& color);
    void swapColors();
    void defaultColors(); ///< Black and white.

    void load(const Store& store); ///< What cannot be read stays as it is.
    void save(Store& store) const;

private:
    PaintModel& model_;
    PaintColor primary_{0.7, 0.02, 0.08, 1};
    PaintColor secondary_ = PaintColor::white();
    std::vector<PaintColor> recent_;
};

} // namespace qirn

#include "app/model/RecentColors.h"

namespace qirn {

std::vector<PaintColor> withRecent(const std::vector<PaintColor>& recent, const PaintColor& color) {
    std::vector<PaintColor> result{color};
    for (const PaintColor& older : recent) {
        if (older.hex() != color.hex() && result.size() < kRecentColors) result.push_back(older);
    }
    return result;
}

} // namespace qirn

#include "app/files/UserBrushes.h"

#include "app/desktop/shared/ThreeWayMerge.h"
#include "brush/BrushFile.h"

#include <utility>

namespace qirn {

std::optional<UserBrushFormat::Content> UserBrushFormat::decode(std::span<const uint8_t> text) {
    auto brushes = BrushFile::decode(text);
    if (brushes) giveEachItsOwnId(*brushes);
    return brushes;
}

QByteArray UserBrushFormat::encode(const Content& brushes) {
    return BrushFile::encode(brushes);
}

UserBrushFormat::Content UserBrushFormat::merged(const Content& base, const Content& ours, Content theirs) {
    return mergedThreeWays(base, ours, std::move(theirs), &BrushSettings::id);
}

std::optional<std::vector<BrushSettings>> brushesToImport(std::span<const uint8_t> text) {
    auto brushes = BrushFile::decode(text);
    if (!brushes) return std::nullopt;
    for (BrushSettings& brush : *brushes) {
        brush.id = QUuid::createUuid();
        brush.isBuiltIn = false;
        brush.category = QLatin1String(kUserBrushCategory);
    }
    return brushes;
}

} // namespace qirn

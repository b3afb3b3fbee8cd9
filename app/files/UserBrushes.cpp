#include "app/files/UserBrushes.h"

#include "brush/BrushFile.h"

namespace qirn {

std::vector<BrushSettings> UserBrushFile::load() {
    std::vector<BrushSettings> brushes;
    file_.load([&](std::span<const uint8_t> text) {
        const auto decoded = BrushFile::decode(text);
        if (decoded) brushes = *decoded;
        return decoded.has_value();
    });
    return brushes;
}

void UserBrushFile::save(const std::vector<BrushSettings>& brushes) {
    file_.save(BrushFile::encode(brushes));
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

#include "app/model/Colors.h"

#include "app/desktop/Store.h"
#include "app/model/PaintModel.h"
#include "formats/common/ColorJson.h"

#include <algorithm>
#include <utility>

namespace qirn {

namespace {

const QString kColorsKey = QStringLiteral("qirn.pt.colors");

std::vector<PaintColor> decodeColors(const Json& list) {
    std::vector<PaintColor> colors;
    if (!list.is_array()) return colors;
    try {
        for (const Json& color : list) colors.push_back(colorFromJson(color));
    } catch (const JsonTypeError&) {
        return {};
    }
    return colors;
}

} // namespace

std::vector<PaintColor> withRecent(const std::vector<PaintColor>& recent, const PaintColor& color) {
    std::vector<PaintColor> result{color};
    for (const PaintColor& older : recent) {
        if (older.hex() != color.hex() && result.size() < kRecentColors) result.push_back(older);
    }
    return result;
}

void Colors::setPrimary(const PaintColor& color) {
    primary_ = PaintColor(color.r, color.g, color.b);
    model_.choiceChanged();
}

void Colors::pick(const PaintColor& color, AddRecent addRecent) {
    setPrimary(color);
    if (addRecent == AddRecent::yes) pushRecent(primary_);
}

void Colors::pushRecent(const PaintColor& color) {
    std::vector<PaintColor> longer = withRecent(recent_, color);
    if (longer == recent_) return;
    recent_ = std::move(longer);
    model_.choiceChanged();
}

void Colors::swapColors() {
    std::swap(primary_, secondary_);
    model_.choiceChanged();
}

void Colors::defaultColors() {
    primary_ = PaintColor::black();
    secondary_ = PaintColor::white();
    model_.choiceChanged();
}

void Colors::load(const Store& store) {
    const Json* list = store.json(kColorsKey);
    const std::vector<PaintColor> colors = list ? decodeColors(*list) : std::vector<PaintColor>();
    if (colors.size() < 2) return;
    primary_ = colors[0];
    secondary_ = colors[1];
    const std::size_t end = std::min(colors.size(), 2 + kRecentColors);
    recent_.assign(colors.begin() + 2, colors.begin() + static_cast<std::ptrdiff_t>(end));
}

void Colors::save(Store& store) const {
    OrderedJson colors = OrderedJson::array({colorToJson(primary_), colorToJson(secondary_)});
    for (const PaintColor& color : recent_) colors.push_back(colorToJson(color));
    store.keep(kColorsKey, colors);
}

} // namespace qirn

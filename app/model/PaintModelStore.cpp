// What the model keeps between runs, apart from pictures. Each value is read for itself, so that a bad one costs
// only itself.
#include "app/model/PaintModel.h"

#include "app/desktop/Store.h"
#include "core/ColorJson.h"

namespace qirn {

namespace {

const QString kToolBrushesKey = QStringLiteral("qirn.pt.toolBrushes");
const QString kColorsKey = QStringLiteral("qirn.pt.colors");
const QString kPaletteKey = QStringLiteral("qirn.pt.palette");
const QString kFillKey = QStringLiteral("qirn.pt.fill");
const QString kToolKey = QStringLiteral("qirn.pt.tool");

/// The brush of each tool that has one; nothing when the record as a whole does not decode.
std::optional<std::map<Tool, BrushSettings>> decodeToolBrushes(const Json& record) {
    if (!record.is_object()) return std::nullopt;
    std::map<Tool, BrushSettings> brushes;
    try {
        for (const auto& [id, brush] : record.items()) {
            const std::optional<Tool> tool = toolWithId(QString::fromStdString(id));
            const BrushSettings decoded = BrushSettings::fromJson(brush);
            if (tool && rowOf(*tool).usesBrush) brushes.insert_or_assign(*tool, decoded);
        }
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
    return brushes;
}

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

void PaintModel::loadState() {
    if (const Json* record = store_.json(kToolBrushesKey)) {
        if (const auto brushes = decodeToolBrushes(*record)) {
            for (const auto& [tool, brush] : *brushes) toolBrush_.insert_or_assign(tool, brush);
        }
    }
    userBrushes_ = userBrushFile_.load();
    userPalettes_ = userPaletteFile_.load();
    if (const Json* list = store_.json(kColorsKey)) {
        const std::vector<PaintColor> colors = decodeColors(*list);
        if (colors.size() >= 2) {
            primary_ = colors[0];
            secondary_ = colors[1];
            const std::size_t end = std::min(colors.size(), 2 + kRecentColors);
            recent_.assign(colors.begin() + 2, colors.begin() + static_cast<std::ptrdiff_t>(end));
        }
    }
    if (const auto text = store_.text(kPaletteKey)) {
        const QUuid id(*text);
        if (!id.isNull()) paletteID_ = id;
    }
    if (const Json* record = store_.json(kFillKey)) {
        try {
            options_.fill = FillOptions::fromJson(*record);
        } catch (const JsonTypeError&) {
            // The built-in values stay.
        }
    }
    if (const auto id = store_.text(kToolKey)) {
        const std::optional<Tool> tool = toolWithId(*id);
        if (tool) tool_ = *tool;
    }
}

void PaintModel::saveStateLater() {
    if (!stateTimer_.isActive()) stateTimer_.start(0);
}

void PaintModel::saveState() {
    stateTimer_.stop();
    OrderedJson brushes = OrderedJson::object();
    for (const auto& [tool, brush] : toolBrush_) brushes[rowOf(tool).id] = brush.toJson();
    store_.set(kToolBrushesKey, brushes);
    OrderedJson colors = OrderedJson::array({colorToJson(primary_), colorToJson(secondary_)});
    for (const PaintColor& color : recent_) colors.push_back(colorToJson(color));
    store_.set(kColorsKey, colors);
    store_.setText(kPaletteKey, paletteID_.toString(QUuid::WithoutBraces).toUpper());
    store_.set(kFillKey, options_.fill.toJson());
    store_.setText(kToolKey, QLatin1String(rowOf(tool_).id));
}

} // namespace qirn

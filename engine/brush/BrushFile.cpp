#include "brush/BrushFile.h"

#include "platform/Json.h"

namespace qirn {

QByteArray BrushFile::encode(std::span<const BrushSettings> brushes) {
    OrderedJson list = OrderedJson::array();
    for (const BrushSettings& brush : brushes) list.push_back(brush.toJson());
    return QByteArray::fromStdString(jsonBytes(list, 2));
}

std::optional<std::vector<BrushSettings>> BrushFile::decode(std::span<const uint8_t> text) {
    const std::optional<Json> list = parseJson(text);
    if (!list || !list->is_array()) return std::nullopt;
    std::vector<BrushSettings> brushes;
    brushes.reserve(list->size());
    try {
        for (const Json& record : *list) brushes.push_back(BrushSettings::fromJson(record));
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
    return brushes;
}

} // namespace qirn

#include "formats/palettes/Palette.h"

#include "formats/common/ColorJson.h"

#include <QCoreApplication>

namespace qirn {

namespace {

/// The elements of an array, each read by its type's own `fromJson`.
template <class T> std::vector<T> listFromJson(const Json& json) {
    if (!json.is_array()) throw JsonTypeError("array");
    std::vector<T> list;
    list.reserve(json.size());
    for (const Json& record : json) list.push_back(T::fromJson(record));
    return list;
}

template <class T> OrderedJson listToJson(std::span<const T> list) {
    OrderedJson json = OrderedJson::array();
    for (const T& value : list) json.push_back(value.toJson());
    return json;
}

} // namespace

PaletteColor PaletteColor::fromJson(const Json& record) {
    return {colorFromJson(jsonMember(record, "color")), jsonText(jsonMember(record, "name"))};
}

OrderedJson PaletteColor::toJson() const {
    return {{"color", colorToJson(color)}, {"name", name.toStdString()}};
}

Palette Palette::fromJson(const Json& record) {
    return {jsonUuid(jsonMember(record, "id")), jsonText(jsonMember(record, "name")),
            listFromJson<PaletteColor>(jsonMember(record, "colors")),
            jsonFlag(jsonMember(record, "isBuiltIn"))};
}

OrderedJson Palette::toJson() const {
    return {{"id", uuidText(id)},
            {"name", name.toStdString()},
            {"colors", listToJson<PaletteColor>(colors)},
            {"isBuiltIn", isBuiltIn}};
}

PaletteError PaletteError::unreadable(const QString& detail) {
    return PaletteError(
        QCoreApplication::translate("PaletteError", "This palette file can't be read: %1.").arg(detail));
}

QByteArray PaletteStore::encode(std::span<const Palette> palettes) {
    return QByteArray::fromStdString(jsonBytes(listToJson(palettes), 2));
}

std::optional<std::vector<Palette>> PaletteStore::decode(std::span<const uint8_t> text) {
    const std::optional<Json> list = parseJson(text);
    if (!list) return std::nullopt;
    try {
        return listFromJson<Palette>(*list);
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
}

} // namespace qirn

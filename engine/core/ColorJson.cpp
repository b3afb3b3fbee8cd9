#include "core/ColorJson.h"

namespace qirn {

OrderedJson colorToJson(const PaintColor& color) {
    return {{"r", color.r}, {"g", color.g}, {"b", color.b}, {"a", color.a}};
}

PaintColor colorFromJson(const Json& value) {
    const auto channel = [&](const char* key) { return jsonNumber(jsonMember(value, key)); };
    return {channel("r"), channel("g"), channel("b"), channel("a")};
}

} // namespace qirn

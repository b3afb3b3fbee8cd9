#include "formats/common/ColorJson.h"

namespace qirn {

OrderedJson colorToJson(const PaintColor& color) {
    return {{"r", jsonFinite(color.r, 0)},
            {"g", jsonFinite(color.g, 0)},
            {"b", jsonFinite(color.b, 0)},
            {"a", jsonFinite(color.a, 1)}};
}

PaintColor colorFromJson(const Json& value) {
    const auto channel = [&](const char* key) { return jsonNumber(jsonMember(value, key)); };
    return {channel("r"), channel("g"), channel("b"), channel("a")};
}

} // namespace qirn

#include "platform/Json.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QStringDecoder>

namespace qirn {

namespace {

/// Builds the value from parser events, counting the depth as it goes: the parser itself does not recurse, so a
/// file of a million brackets ends here and not in the stack.
class DepthLimitedBuilder {
public:
    using number_integer_t = Json::number_integer_t;
    using number_unsigned_t = Json::number_unsigned_t;
    using number_float_t = Json::number_float_t;
    using string_t = Json::string_t;
    using binary_t = Json::binary_t;

    Json root;

    bool null() { return put(Json(nullptr)) != nullptr; }
    bool boolean(bool v) { return put(Json(v)) != nullptr; }
    bool number_integer(number_integer_t v) { return put(Json(v)) != nullptr; }
    bool number_unsigned(number_unsigned_t v) { return put(Json(v)) != nullptr; }
    bool number_float(number_float_t v, const string_t&) { return put(Json(v)) != nullptr; }
    bool string(string_t& v) { return put(Json(std::move(v))) != nullptr; }
    bool binary(binary_t&) { return false; }
    bool start_object(std::size_t) { return open(Json::object()); }
    bool start_array(std::size_t) { return open(Json::array()); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(string_t& name) {
        keys_.back() = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) { return false; }

private:
    Json* put(Json value) {
        if (open_.empty()) {
            root = std::move(value);
            return &root;
        }
        Json& parent = *open_.back();
        if (parent.is_array()) {
            parent.push_back(std::move(value));
            return &parent.back();
        }
        Json& member = parent[keys_.back()];
        member = std::move(value);
        return &member;
    }
    bool open(Json container) {
        if (open_.size() >= kJsonMaxDepth) return false;
        open_.push_back(put(std::move(container)));
        keys_.emplace_back();
        return true;
    }
    bool close() {
        open_.pop_back();
        keys_.pop_back();
        return true;
    }

    std::vector<Json*> open_; // an element's parent grows only after the element was closed
    std::vector<std::string> keys_;
};

[[noreturn]] void wrongType(const char* wanted) {
    throw JsonTypeError(wanted);
}

} // namespace

std::optional<Json> parseJson(std::span<const uint8_t> text) {
    // The parser stops at a zero byte and would not see what follows it.
    if (std::find(text.begin(), text.end(), 0) != text.end()) return std::nullopt;
    DepthLimitedBuilder builder;
    if (!Json::sax_parse(text.begin(), text.end(), &builder)) return std::nullopt;
    return std::move(builder.root);
}

const Json& jsonMember(const Json& object, const char* key) {
    if (!object.is_object()) wrongType("object");
    const auto found = object.find(key);
    if (found == object.end()) wrongType(key);
    return *found;
}

const Json* jsonOptionalMember(const Json& object, const char* key) {
    if (!object.is_object()) wrongType("object");
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

QString jsonText(const Json& value) {
    if (!value.is_string()) wrongType("text");
    // A byte order mark at the start is part of the text: a name keeps it.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(QByteArrayView(value.get_ref<const std::string&>()));
}

double jsonNumber(const Json& value) {
    if (!value.is_number()) wrongType("number");
    return value.get<double>();
}

int64_t jsonWhole(const Json& value) {
    if (value.is_number_unsigned()) {
        const uint64_t whole = value.get<uint64_t>();
        if (whole > static_cast<uint64_t>(INT64_MAX)) wrongType("whole number");
        return static_cast<int64_t>(whole);
    }
    if (value.is_number_integer()) return value.get<int64_t>();
    const double number = jsonNumber(value);
    if (number != std::floor(number) || !(std::fabs(number) < 0x1p63)) wrongType("whole number");
    return static_cast<int64_t>(number);
}

bool jsonFlag(const Json& value) {
    if (!value.is_boolean()) wrongType("flag");
    return value.get<bool>();
}

QUuid jsonUuid(const Json& value) {
    const QString text = jsonText(value);
    if (text.size() != 36) wrongType("UUID");
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const bool isHyphenPlace = i == 8 || i == 13 || i == 18 || i == 23;
        const bool isDigit = (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        if (isHyphenPlace ? c != u'-' : !isDigit) wrongType("UUID");
    }
    return QUuid::fromString(text);
}

std::string uuidText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

std::string jsonBytes(const OrderedJson& value, int indent) {
    return value.dump(indent, ' ', false, OrderedJson::error_handler_t::replace);
}

} // namespace qirn

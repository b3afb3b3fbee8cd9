#include "platform/Json.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include <QStringDecoder>

namespace qirn {

namespace {

// Of the one member that is wanted: its values, and 16 bytes of text each time.
constexpr std::size_t kMostKept = 4096, kTextBytes = 16;
constexpr int64_t kLongestWord = 1 << 20; // bytes; the parser keeps a text or a number until it ends

/// The bytes of a text that comes in pieces. It ends within a word that is too long; that is noted, and a zero byte, at
/// which the parser would stop.
class Pieces {
public:
    explicit Pieces(const std::function<std::span<const uint8_t>()>& next) : next_(next) { fetch(); }

    bool isAtEnd() const { return rest_.empty(); }
    uint8_t front() const { return rest_.front(); }
    void advance() {
        rest_ = rest_.subspan(1);
        if (++wordBytes_ > kLongestWord) {
            isSound_ = false;
            rest_ = {};
        } else if (rest_.empty()) {
            fetch();
        }
    }
    void wordEnds() { wordBytes_ = 0; }
    bool isSound() const { return isSound_; }

private:
    void fetch() {
        rest_ = next_();
        isSound_ = isSound_ && std::find(rest_.begin(), rest_.end(), 0) == rest_.end();
    }

    const std::function<std::span<const uint8_t>()>& next_;
    std::span<const uint8_t> rest_;
    int64_t wordBytes_ = 0;
    bool isSound_ = true;
};

/// Builds the value from parser events, counting the depth as it goes: the parser itself does not recurse, so a
/// file of a million brackets ends here and not in the stack.
class DepthLimitedBuilder {
public:
    DepthLimitedBuilder() = default;
    /// Keeps only that member of the object that is the text, and tells the pieces of each event.
    DepthLimitedBuilder(std::string_view member, Pieces& pieces) : member_(member), pieces_(&pieces) {}

    using number_integer_t = Json::number_integer_t;
    using number_unsigned_t = Json::number_unsigned_t;
    using number_float_t = Json::number_float_t;
    using string_t = Json::string_t;
    using binary_t = Json::binary_t;

    Json root;

    bool null() { return add(nullptr); }
    bool boolean(bool v) { return add(v); }
    bool number_integer(number_integer_t v) { return add(v); }
    bool number_unsigned(number_unsigned_t v) { return add(v); }
    bool number_float(number_float_t v, const string_t&) { return add(v); }
    bool string(string_t& v) { return mayKeep(v) && add(std::move(v)); }
    bool binary(binary_t&) { return false; }
    bool start_object(std::size_t) { return open(Json::object()); }
    bool start_array(std::size_t) { return open(Json::array()); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(string_t& name) {
        heard();
        if (member_ && depth_ == 1) isSkipping_ = name != *member_;
        if (!mayKeep(name)) return false;
        if (!isSkipping_) keys_.back() = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) { return false; }

private:
    void heard() {
        if (pieces_) pieces_->wordEnds();
    }
    template <class Value> bool add(Value&& value) {
        heard();
        if (isSkipping_) return true;
        if (!mayGrow()) return false;
        put(Json(std::forward<Value>(value)));
        return true;
    }
    bool mayGrow(std::size_t by = 1) { return !member_ || (kept_ += by) <= kMostKept; }
    bool mayKeep(const string_t& text) { return isSkipping_ || mayGrow(text.size() / kTextBytes); }
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
        heard();
        if (depth_ >= kJsonMaxDepth || (member_ && depth_ == 0 && !container.is_object())) return false;
        ++depth_;
        if (isSkipping_) return true;
        if (!mayGrow()) return false;
        open_.push_back(put(std::move(container)));
        keys_.emplace_back();
        return true;
    }
    bool close() {
        heard();
        --depth_;
        if (isSkipping_) return true;
        open_.pop_back();
        keys_.pop_back();
        return true;
    }

    std::vector<Json*> open_; // an element's parent grows only after the element was closed
    std::vector<std::string> keys_;
    int depth_ = 0; // of all that is open, kept or not
    std::optional<std::string> member_;
    Pieces* pieces_ = nullptr;
    bool isSkipping_ = false; // up to the next key of the outermost object
    std::size_t kept_ = 0;
};

/// As the parser wants it; the end has no pieces.
struct PieceIterator {
    using iterator_category = std::input_iterator_tag;
    using value_type = uint8_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const uint8_t*;
    using reference = uint8_t;

    uint8_t operator*() const { return pieces->front(); }
    PieceIterator& operator++() {
        pieces->advance();
        return *this;
    }
    PieceIterator operator++(int) {
        pieces->advance();
        return *this;
    }
    bool isAtEnd() const { return !pieces || pieces->isAtEnd(); }
    bool operator==(const PieceIterator& other) const { return isAtEnd() == other.isAtEnd(); }

    Pieces* pieces = nullptr;
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

std::optional<Json> parseJsonMember(const std::function<std::span<const uint8_t>()>& nextPiece,
                                    std::string_view key) {
    Pieces pieces(nextPiece);
    DepthLimitedBuilder builder(key, pieces);
    if (!Json::sax_parse(PieceIterator{&pieces}, PieceIterator{}, &builder) || !pieces.isSound())
        return std::nullopt;
    const auto found = builder.root.find(key);
    return found == builder.root.end() ? Json() : std::move(*found);
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

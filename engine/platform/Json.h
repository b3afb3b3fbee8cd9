#pragma once
#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <QString>
#include <QUuid>
#include <nlohmann/json.hpp>

namespace qirn {

/// A value read from a file. Keys are sorted, so that a hostile object with a million keys does not cost a quadratic
/// search; of two equal keys the last wins.
using Json = nlohmann::json;
/// A value to be written: keys stay in the order in which they were added.
using OrderedJson = nlohmann::ordered_json;

inline constexpr int kJsonMaxDepth = 32;

/// Parses UTF-8 text; nothing for malformed text, broken UTF-8, bytes behind the value, or nesting deeper than
/// `kJsonMaxDepth`. Memory stays in proportion to the text.
std::optional<Json> parseJson(std::span<const uint8_t> text);

/// One member of the object that a text is, of 64 KB or a few thousand values at most; null where it has none. The text
/// comes in pieces, of which an empty one is its end. All of it is judged as by `parseJson`, and more than 1 MB of one
/// string, of one number or of blanks refused; only the member is kept: memory does not grow with the text.
std::optional<Json> parseJsonMember(const std::function<std::span<const uint8_t>()>& nextPiece,
                                    std::string_view key);

/// A value of the wrong type, or a required key that is missing.
struct JsonTypeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Typed reads that never convert between kinds: each throws JsonTypeError. A flag is only true or false. A whole
// number may be written 300, 300.0 or 3e2, not 300.5 nor beyond 64 bits.
const Json& jsonMember(const Json& object, const char* key); ///< The member; throws where there is none.
const Json* jsonOptionalMember(const Json& object, const char* key); ///< Null where it is absent or null.
QString jsonText(const Json& value);
double jsonNumber(const Json& value);
int64_t jsonWhole(const Json& value);
bool jsonFlag(const Json& value);
/// Only the 36 characters of a written UUID, digits of either case; what else Qt's own reader takes throws.
QUuid jsonUuid(const Json& value);
std::string uuidText(const QUuid& id); ///< The 36 characters, in upper case.

/// The value, or `instead` for NaN and infinity, which JSON cannot express.
inline double jsonFinite(double value, double instead) {
    return std::isfinite(value) ? value : instead;
}

/// Compact or (with `indent` of 2, say) pretty-printed UTF-8.
std::string jsonBytes(const OrderedJson& value, int indent = -1);

} // namespace qirn

#include "formats/native/PaintFileManifest.h"

#include "formats/common/ColorJson.h"
#include "platform/CheckedMath.h"
#include "platform/Json.h"

#include <algorithm>

#include <QTimeZone>

#include <zlib.h>

namespace qirn::PaintFile {

namespace {

const QString kMomentForm = QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'");

OrderedJson written(const TileEntry& entry) {
    OrderedJson json{{"i", entry.i}, {"o", entry.o}, {"n", entry.n}, {"c", entry.c}};
    if (entry.k) json["k"] = *entry.k;
    return json;
}

OrderedJson written(const OnionSkin& onion) {
    return {{"enabled", onion.enabled},
            {"before", onion.before},
            {"after", onion.after},
            {"opacity", jsonFinite(onion.opacity, OnionSkin{}.opacity)},
            {"tint", onion.tint},
            {"beforeColor", colorToJson(onion.beforeColor)},
            {"afterColor", colorToJson(onion.afterColor)}};
}

OrderedJson written(const LayerEntry& layer) {
    OrderedJson tiles = OrderedJson::array();
    for (const TileEntry& tile : layer.tiles) tiles.push_back(written(tile));
    return {{"id", uuidText(layer.id)},
            {"name", layer.name.toStdString()},
            {"opacity", jsonFinite(layer.opacity, 1)},
            {"blend", layer.blend.toStdString()},
            {"visible", layer.visible},
            {"locked", layer.locked},
            {"alphaLocked", layer.alphaLocked},
            {"clipping", layer.clipping},
            {"tiles", std::move(tiles)}};
}

TileEntry readTile(const Json& json) {
    const auto checksum = json.find("k"); // of another type it counts as absent
    return {jsonWhole(jsonMember(json, "i")), jsonWhole(jsonMember(json, "o")),
            jsonWhole(jsonMember(json, "n")), jsonWhole(jsonMember(json, "c")),
            checksum != json.end() && checksum->is_number_integer() ? std::optional(checksum->get<int64_t>())
                                                                    : std::nullopt};
}

OnionSkin readOnion(const Json& json) {
    return {.enabled = jsonFlag(jsonMember(json, "enabled")),
            .before = jsonWhole(jsonMember(json, "before")),
            .after = jsonWhole(jsonMember(json, "after")),
            .opacity = std::clamp(jsonNumber(jsonMember(json, "opacity")), 0.0, 1.0),
            .tint = jsonFlag(jsonMember(json, "tint")),
            .beforeColor = colorFromJson(jsonMember(json, "beforeColor")),
            .afterColor = colorFromJson(jsonMember(json, "afterColor"))};
}

/// Accepts only the form 2026-03-01T12:30:05Z. Qt's parser is lenient, so the moment is formatted again and compared
/// with the text. Date and time are parsed separately, because together they would be local time, in which some hours
/// do not exist.
QDateTime readMoment(const Json& json) {
    const QString text = jsonText(json);
    const QDate date = QDate::fromString(text.left(10), QStringLiteral("yyyy-MM-dd"));
    const QTime time = QTime::fromString(text.mid(11, 8), QStringLiteral("HH:mm:ss"));
    const QDateTime moment = QDateTime(date, time, QTimeZone::utc()).toUTC();
    if (!moment.isValid() || moment.toString(kMomentForm) != text) throw JsonTypeError("moment");
    return moment;
}

const Json& list(const Json& json) {
    if (!json.is_array()) throw JsonTypeError("list");
    return json;
}

LayerEntry readLayer(const Json& json) {
    LayerEntry layer;
    layer.id = jsonUuid(jsonMember(json, "id"));
    layer.name = jsonText(jsonMember(json, "name"));
    layer.opacity = jsonNumber(jsonMember(json, "opacity"));
    layer.blend = jsonText(jsonMember(json, "blend"));
    layer.visible = jsonFlag(jsonMember(json, "visible"));
    layer.locked = jsonFlag(jsonMember(json, "locked"));
    layer.alphaLocked = jsonFlag(jsonMember(json, "alphaLocked"));
    layer.clipping = jsonFlag(jsonMember(json, "clipping"));
    for (const Json& tile : list(jsonMember(json, "tiles"))) layer.tiles.push_back(readTile(tile));
    return layer;
}

Manifest readManifest(const Json& json) {
    Manifest manifest;
    manifest.format = jsonText(jsonMember(json, "format"));
    manifest.formatVersion = jsonWhole(jsonMember(json, "formatVersion"));
    manifest.app = jsonText(jsonMember(json, "app"));
    manifest.width = jsonWhole(jsonMember(json, "width"));
    manifest.height = jsonWhole(jsonMember(json, "height"));
    manifest.dpi = jsonNumber(jsonMember(json, "dpi"));
    manifest.active = jsonWhole(jsonMember(json, "active"));
    for (const Json& layer : list(jsonMember(json, "layers"))) manifest.layers.push_back(readLayer(layer));
    if (const Json* onion = jsonOptionalMember(json, "onion")) manifest.onion = readOnion(*onion);
    if (const Json* preview = jsonOptionalMember(json, "thumbnail")) manifest.thumbnail = readTile(*preview);
    if (const Json* saved = jsonOptionalMember(json, "saved")) manifest.saved = readMoment(*saved);
    return manifest;
}

} // namespace

std::string manifestText(const Manifest& manifest) {
    OrderedJson layers = OrderedJson::array();
    for (const LayerEntry& layer : manifest.layers) layers.push_back(written(layer));
    OrderedJson json{{"format", manifest.format.toStdString()},
                     {"formatVersion", manifest.formatVersion},
                     {"app", manifest.app.toStdString()},
                     {"width", manifest.width},
                     {"height", manifest.height},
                     {"dpi", jsonFinite(manifest.dpi, 72)},
                     {"active", manifest.active},
                     {"layers", std::move(layers)}};
    if (manifest.onion) json["onion"] = written(*manifest.onion);
    if (manifest.thumbnail) json["thumbnail"] = written(*manifest.thumbnail);
    if (manifest.saved) json["saved"] = manifest.saved->toUTC().toString(kMomentForm).toStdString();
    return jsonBytes(json);
}

std::optional<int64_t> manifestLength(std::span<const uint8_t> file) {
    if (std::ssize(file) < kHeaderBytes || !std::equal(magic.begin(), magic.end(), file.begin()))
        return std::nullopt;
    int64_t length = 0;
    for (std::size_t i = checkedSize(kHeaderBytes); i-- > magic.size();) length = length << 8 | file[i];
    return length;
}

std::optional<Manifest> parseManifest(std::span<const uint8_t> text) {
    const std::optional<Json> json = parseJson(text);
    if (!json) return std::nullopt;
    try {
        return readManifest(*json);
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
}

std::optional<TileEntry> previewEntryIn(const std::function<std::span<const uint8_t>()>& nextPiece) {
    const std::optional<Json> entry = parseJsonMember(nextPiece, "thumbnail");
    if (!entry || entry->is_null()) return std::nullopt;
    try {
        return readTile(*entry);
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
}

std::optional<std::span<const uint8_t>> storedBytes(std::span<const uint8_t> blob, const TileEntry& entry) {
    const auto size = static_cast<int64_t>(blob.size());
    // Compared without adding, which could overflow.
    if (entry.o < 0 || entry.n < 1 || entry.n > size - entry.o) return std::nullopt;
    return blob.subspan(checkedSize(entry.o), checkedSize(entry.n));
}

int64_t checksumOf(std::span<const uint8_t> bytes) {
    return static_cast<int64_t>(crc32_z(0, bytes.data(), bytes.size()));
}

bool matches(std::span<const uint8_t> bytes, const std::optional<int64_t>& checksum) {
    return !checksum || *checksum == checksumOf(bytes);
}

} // namespace qirn::PaintFile

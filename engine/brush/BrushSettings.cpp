#include "brush/BrushSettings.h"

#include "core/PaintEngine.h"
#include "platform/Json.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

QString optionalText(const Json& record, const char* key, const char* fallback) {
    const Json* value = jsonOptionalMember(record, key);
    return value ? jsonText(*value) : QString::fromUtf8(fallback);
}

BrushKind kindOf(const Json& record) {
    const Json* value = jsonOptionalMember(record, "kind");
    if (!value || !value->is_string()) return BrushKind::paint;
    return brushKindWithId(value->get_ref<const std::string&>()).value_or(BrushKind::paint);
}

} // namespace

std::optional<BrushKind> brushKindWithId(std::string_view id) {
    for (const BrushKindRow& row : kBrushKinds) {
        if (id == row.id) return row.kind;
    }
    return std::nullopt;
}

BrushSettings::BrushSettings(QString brushName, QString brushCategory, BrushKind brushKind,
                             std::optional<QUuid> brushId)
    : id(brushId ? *brushId : stableID(brushCategory + u'/' + brushName)),
      name(std::move(brushName)),
      category(std::move(brushCategory)),
      kind(brushKind) {}

QUuid BrushSettings::stableID(const QString& text) {
    uint64_t h1 = PaintEngine::fnvStart;
    uint64_t h2 = 0x84222325CBF29CE4u;
    for (char c : text.toUtf8()) {
        const auto byte = static_cast<uint8_t>(c);
        h1 = PaintEngine::fnvStep(h1, byte);
        // The added 7 is part of every identifier that was ever stored.
        h2 = (h2 ^ byte) * 0x01000193u + 7;
    }
    std::array<uint8_t, 16> bytes;
    for (std::size_t i = 0; i < 8; ++i) {
        bytes[i] = static_cast<uint8_t>(h1 >> (8 * i));
        bytes[i + 8] = static_cast<uint8_t>(h2 >> (8 * i));
    }
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80); // the usual variant
    QByteArray written;
    for (uint8_t byte : bytes) written.append(static_cast<char>(byte));
    return QUuid::fromRfc4122(written);
}

void BrushSettings::sanitize() {
    for (const BrushField& field : kBrushFields) {
        if (!field.number) continue;
        double& value = this->*field.number;
        value = std::isfinite(value) ? std::min(std::max(value, field.lower), field.upper) : field.lower;
    }
}

BrushSettings BrushSettings::fromJson(const Json& record) {
    const QString name = optionalText(record, "name", "Brush");
    const QString category = optionalText(record, "category", "My Brushes");
    const BrushKind kind = kindOf(record);
    std::optional<QUuid> id;
    if (const Json* value = jsonOptionalMember(record, "id")) id = jsonUuid(*value);
    BrushSettings brush(name, category, kind, id);
    for (const BrushField& field : kBrushFields) {
        const Json* value = jsonOptionalMember(record, field.key);
        if (!value) continue;
        if (field.number && value->is_number()) brush.*field.number = jsonNumber(*value);
        if (field.flag && value->is_boolean()) brush.*field.flag = jsonFlag(*value);
    }
    brush.sanitize();
    return brush;
}

OrderedJson BrushSettings::toJson() const {
    OrderedJson record = OrderedJson::object();
    record["id"] = uuidText(id);
    record["name"] = name.toStdString();
    record["category"] = category.toStdString();
    record["kind"] = rowOf(kind).id;
    for (const BrushField& field : kBrushFields) {
        if (field.number)
            record[field.key] = this->*field.number;
        else
            record[field.key] = this->*field.flag;
    }
    return record;
}

} // namespace qirn

#include "app/desktop/Store.h"

#include "app/desktop/Failures.h"
#include "app/desktop/shared/ThreeWayMerge.h"
#include "platform/Bytes.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <QFileInfo>
#include <QGuiApplication>
#include <QSettings>

namespace qirn {

namespace {

constexpr int64_t kLargestOlderFile = 8 * 1024 * 1024; // bytes

/// The values of an INI file, in which each was kept as text.
Json olderValues(const QString& path) {
    Json values = Json::object();
    const QFileInfo file(path);
    if (!file.isFile() || file.size() > kLargestOlderFile)
        return values; // nor a pipe, on which reading would block
    const QSettings settings(path, QSettings::IniFormat);
    for (const QString& key : settings.allKeys()) {
        const QByteArray text = settings.value(key).toByteArray();
        const std::optional<Json> json = parseJson(bytesOf(text));
        values[key.toStdString()] = json && (json->is_structured() || json->is_number())
                                        ? *json
                                        : Json(QString::fromUtf8(text).toStdString());
    }
    return values;
}

} // namespace

std::optional<Json> Store::Format::decode(std::span<const uint8_t> text) {
    std::optional<Json> values = parseJson(text);
    return values && values->is_object() ? values : std::nullopt;
}

QByteArray Store::Format::encode(const Json& values) {
    return QByteArray::fromStdString(jsonBytes(values));
}

Json Store::Format::merged(const Json& base, const Json& ours, const Json& theirs) {
    const auto listed = [](const Json& values) {
        std::vector<std::pair<std::string, Json>> entries;
        for (const auto& [key, value] : values.items()) entries.emplace_back(key, value);
        return entries;
    };
    Json result = empty();
    const auto keyOf = [](const auto& entry) { return entry.first; };
    for (auto& [key, value] : mergedThreeWays(listed(base), listed(ours), listed(theirs), keyOf))
        result[key] = std::move(value);
    return result;
}

Store::Store(const QString& file, const QString& older, Delays delays) : delays_(delays), values_(file) {
    timer_.setSingleShot(true);
    if (file.isEmpty()) return;
    // Out of memory: the next write tries again.
    const auto tryToWrite = [this] { contained([this] { write(); }); };
    connect(&timer_, &QTimer::timeout, this, tryToWrite);
    if (qGuiApp) {
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
                [tryToWrite](Qt::ApplicationState state) {
                    if (state != Qt::ApplicationActive) tryToWrite();
                });
    }
    if (!values_.load()) {
        values_.edit() = olderValues(older);
        if (!values_->empty()) writeSoon();
    }
    kept_ = *values_;
}

Store::~Store() {
    flush();
}

const Json* Store::json(const QString& key) const {
    return jsonOptionalMember(*values_, key.toUtf8().constData());
}

std::optional<QString> Store::text(const QString& key) const {
    const Json* value = json(key);
    return value && value->is_string() ? std::optional(jsonText(*value)) : std::nullopt;
}

std::optional<double> Store::number(const QString& key) const {
    const Json* value = json(key);
    return value && value->is_number() ? std::optional(jsonNumber(*value)) : std::nullopt;
}

std::optional<bool> Store::flag(const QString& key) const {
    const Json* value = json(key);
    if (value && value->is_boolean()) return jsonFlag(*value);
    const std::optional<double> asNumber = number(key);
    return asNumber ? std::optional(*asNumber != 0) : std::nullopt;
}

void Store::set(const QString& key, const OrderedJson& value) {
    Json given(value);
    const Json* const held = json(key);
    if (held && *held == given) return;
    values_.edit()[key.toStdString()] = std::move(given);
    writeSoon();
}

void Store::keep(const QString& key, const OrderedJson& value) {
    Json& told = kept_[key.toStdString()];
    Json given(value);
    if (told == given) return;
    told = std::move(given);
    set(key, value);
}

void Store::writeSoon() {
    if (!changed_.isValid()) changed_.start();
    timer_.start(
        static_cast<int>(std::clamp<int64_t>(delays_.longest - changed_.elapsed(), 0, delays_.rest)));
}

KitStore Store::forKit() {
    return {[this](const char* key) { return text(key).value_or(QString()); },
            [this](const char* key, const QString& value) { setText(key, value); },
            [this](const char* key) { return number(key).value_or(0); },
            [this](const char* key, double value) { set(key, value); }};
}

void Store::write() {
    timer_.stop();
    changed_.invalidate();
    values_.write();
}

void Store::flush() {
    timer_.stop();
    changed_.invalidate();
    values_.flush();
}

} // namespace qirn

#include "app/desktop/Store.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/UserFile.h"
#include "platform/Bytes.h"

#include <algorithm>
#include <atomic>

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

/// Shared by the store and its writes in the background.
struct Store::Target {
    explicit Target(const QString& path) : file(path) {}
    UserFile file; // after loading used by the background thread alone
    std::atomic<bool> hasFailed = false;
};

Store::Store(const QString& file, const QString& older, Delays delays)
    : delays_(delays),
      target_(std::make_shared<Target>(file)) {
    timer_.setSingleShot(true);
    // Out of memory: the next write tries again.
    const auto tryToWrite = [this] { contained([this] { write(); }); };
    connect(&timer_, &QTimer::timeout, this, tryToWrite);
    if (qGuiApp) {
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
                [tryToWrite](Qt::ApplicationState state) {
                    if (state != Qt::ApplicationActive) tryToWrite();
                });
    }
    const bool isThere = target_->file.load([this](std::span<const uint8_t> text) {
        std::optional<Json> json = parseJson(text);
        if (!json || !json->is_object()) return false;
        values_ = std::move(*json);
        return true;
    });
    if (isThere) return;
    values_ = olderValues(older);
    if (!values_.empty()) writeSoon();
}

Store::~Store() {
    flush();
}

const Json* Store::json(const QString& key) const {
    return jsonOptionalMember(values_, key.toUtf8().constData());
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
    Json& held = values_[key.toStdString()];
    Json given(value);
    if (held == given) return;
    held = std::move(given);
    writeSoon();
}

void Store::writeSoon() {
    if (!target_) return;
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
    if (!target_ || !(changed_.isValid() || target_->hasFailed)) return;
    target_->hasFailed = false;
    BackgroundQueue::files().run([target = target_, bytes = QByteArray::fromStdString(jsonBytes(values_))] {
        if (!target->file.save(bytes)) target->hasFailed = true;
    });
    changed_.invalidate();
}

void Store::flush() {
    if (!target_) return;
    write();
    BackgroundQueue::files().finish();
}

} // namespace qirn

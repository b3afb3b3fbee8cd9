#include "Defaults.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace qirn {

std::optional<QString> Defaults::text(const QString& key) const {
    const std::optional<QByteArray> bytes = value(key);
    if (!bytes) return std::nullopt;
    return QString::fromUtf8(*bytes);
}

std::optional<double> Defaults::number(const QString& key) const {
    bool isNumber = false;
    const double number = text(key).value_or(QString()).toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

void Defaults::setNumber(const QString& key, double number) {
    setText(key, QString::number(number, 'g', 17));
}

std::optional<Json> Defaults::json(const QString& key) const {
    const std::optional<QByteArray> bytes = value(key);
    if (!bytes) return std::nullopt;
    return parseJson(
        {reinterpret_cast<const uint8_t*>(bytes->constData()), static_cast<std::size_t>(bytes->size())});
}

void Defaults::setJson(const QString& key, const OrderedJson& value) {
    setValue(key, QByteArray::fromStdString(jsonBytes(value)));
}

UserDefaults::UserDefaults()
    : file_(QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
                .filePath(QStringLiteral("Qirn Paint/Qirn Paint.ini"))) {}

std::optional<QByteArray> UserDefaults::value(const QString& key) const {
    const QVariant stored = QSettings(file_, QSettings::IniFormat).value(key);
    if (!stored.isValid()) return std::nullopt;
    return stored.toByteArray();
}

void UserDefaults::setValue(const QString& key, const QByteArray& value) {
    QSettings settings(file_, QSettings::IniFormat);
    if (settings.value(key).toByteArray() != value) settings.setValue(key, value);
}

void UserDefaults::remove(const QString& key) {
    QSettings(file_, QSettings::IniFormat).remove(key);
}

QStringList UserDefaults::keys() const {
    return QSettings(file_, QSettings::IniFormat).allKeys();
}

std::optional<QByteArray> MemoryDefaults::value(const QString& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

QStringList MemoryDefaults::keys() const {
    QStringList list;
    for (const auto& [key, bytes] : values_) list << key;
    return list;
}

} // namespace qirn

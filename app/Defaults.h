#pragma once
#include "platform/Json.h"

#include <map>
#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace qirn {

/// The per-user store of small values. A value that could not be read stays as it is until a good one replaces
/// it: nothing here deletes on its own.
class Defaults {
public:
    virtual ~Defaults() = default;
    virtual std::optional<QByteArray> value(const QString& key) const = 0;
    virtual void setValue(const QString& key, const QByteArray& value) = 0;
    virtual void remove(const QString& key) = 0;
    virtual QStringList keys() const = 0;

    std::optional<QString> text(const QString& key) const;
    void setText(const QString& key, const QString& text) { setValue(key, text.toUtf8()); }
    std::optional<double> number(const QString& key) const; ///< Nothing when it is absent or no number.
    void setNumber(const QString& key, double number);
    /// The value as JSON; nothing when it is absent or malformed.
    std::optional<Json> json(const QString& key) const;
    void setJson(const QString& key, const OrderedJson& value); ///< Compact.
};

/// The real store: an INI file in the user's configuration folder.
class UserDefaults final : public Defaults {
public:
    UserDefaults();
    explicit UserDefaults(QString file) : file_(std::move(file)) {} ///< Another file, for the self-test.
    std::optional<QByteArray> value(const QString& key) const override;
    void setValue(const QString& key, const QByteArray& value) override;
    void remove(const QString& key) override;
    QStringList keys() const override;

private:
    QString file_;
};

/// Values of this process only.
class MemoryDefaults final : public Defaults {
public:
    std::optional<QByteArray> value(const QString& key) const override;
    void setValue(const QString& key, const QByteArray& value) override { values_[key] = value; }
    void remove(const QString& key) override { values_.erase(key); }
    QStringList keys() const override;

private:
    std::map<QString, QByteArray> values_;
};

} // namespace qirn

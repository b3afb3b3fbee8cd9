#pragma once
#include "app/desktop/shared/SharedFile.h"
#include "kit/KitStore.h"
#include "platform/Json.h"

#include <optional>

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

/// The user's small persistent values, such as preferences and colors: a JSON object with a member for each key, held in
/// memory. Half a second after the last change, and at the latest five after the first, it is written whole and
/// in the background; at once when another program's window comes forward. Main thread only.
///
/// A file that is there but cannot be read is moved aside under a telling name before the first write. A failure to write
/// is not reported: the values stay in use, and the next write tries again.
class Store : public QObject {
    Q_OBJECT
public:
    struct Delays {         // milliseconds
        int64_t rest = 500; ///< Without a change before a write.
        int64_t longest = 5000;
    };
    Store() : Store(QString()) {} ///< For this process only: nothing is read or written.
    /// Where `file` does not exist yet, the values of an older INI file are taken over.
    explicit Store(const QString& file, const QString& older = {}, Delays delays = {500, 5000});
    ~Store() override; ///< As `flush`.

    /// Null when it is absent; borrowed until the next change or until control returns to the event loop.
    const Json* json(const QString& key) const;
    std::optional<QString> text(const QString& key) const;
    std::optional<double> number(const QString& key) const; ///< Nothing when it is absent or no number.
    std::optional<bool> flag(const QString& key) const;     ///< A number that is not 0 counts as true.
    void set(const QString& key, const OrderedJson& value); ///< A number, a flag or a whole record.
    void setText(const QString& key, const QString& text) { set(key, text.toStdString()); }
    /// As `set`, for what is told again and again and read only at the start: a value that is no other than the one told
    /// last, or than the one at the start, is no change, and another program's stays.
    void keep(const QString& key, const OrderedJson& value);

    /// What is chosen in the interface kit, under the kit's own keys; it borrows the store.
    KitStore forKit();

    void write(); ///< Begins to write what has changed.
    void flush(); ///< Writes what has changed and waits for it.

private:
    struct Format { // of the file
        using Content = Json;
        static Json empty() { return Json::object(); }
        static std::optional<Json> decode(std::span<const uint8_t> text);
        static QByteArray encode(const Json& values);
        static Json merged(const Json& base, const Json& ours, const Json& theirs); // key by key
    };
    void writeSoon();

    Delays delays_;
    SharedFile<Format> values_;
    Json kept_ =
        Json::object(); // of each key that `keep` was called for, the value last told; before that all values
    QTimer timer_;      // single shot: the next write
    QElapsedTimer changed_; // since the first change that no write has begun for; invalid: none
};

} // namespace qirn

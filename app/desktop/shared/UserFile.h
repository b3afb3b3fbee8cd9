#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include <QByteArray>
#include <QString>

namespace qirn {

/// A file of the user's own, such as the presets, which several programs may write. One that exists but cannot be read is
/// never overwritten: it is moved aside under a telling name.
class UserFile {
public:
    explicit UserFile(QString path) : path_(std::move(path)) {}

    /// Hands the content to `decode`, which says whether it could be read. False, and nothing happens, where there is
    /// no file.
    bool load(const std::function<bool(std::span<const uint8_t>)>& decode) const;

    /// Replaces the content by what `next` makes of it: given what is there by now, it returns nothing where that cannot be
    /// read; given nothing, since there is no file or no longer one, it returns the first content. Meanwhile nobody else is
    /// in here for the same file; but it waits two seconds for that and no more, and not at all where there are no
    /// locks. False when the file could not be written.
    using Next = std::function<std::optional<QByteArray>(const std::optional<QByteArray>& there)>;
    bool replace(const Next& next) const;

private:
    QByteArray moveAside() const; // where to; empty: it could not

    QString path_;
};

} // namespace qirn

#pragma once
#include <cstdint>
#include <functional>
#include <span>

#include <QByteArray>
#include <QString>

namespace qirn {

/// A file of the user's own, such as the presets. One that exists but cannot be read is never overwritten: the first save
/// moves it aside under a telling name.
class UserFile {
public:
    explicit UserFile(QString path) : path_(std::move(path)) {}

    /// Hands the content to `decode`, which says whether it could be read. False, and nothing happens, where there is
    /// no file.
    bool load(const std::function<bool(std::span<const uint8_t>)>& decode);
    bool save(const QByteArray& bytes); ///< False when it could not be written.

private:
    QString path_;
    bool unreadable_ = false;
};

} // namespace qirn

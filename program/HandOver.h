#pragma once
#include "app/model/PaintSheet.h"

#include <cstddef>
#include <optional>

#include <QByteArray>
#include <QByteArrayList>

namespace qirn {

/// What a start of the program hands over to the studio that is open already, as bytes on a socket:
///
///     4 bytes     the length of what follows, big-endian, at most 1 MB
///     version     the program's, and like every field ended by a zero byte
///     token       by which the desktop lets the window come forward; may be empty
///     sheet       "new-canvas" or "recover", to be shown once the files are open; may be empty
///     paths       of the files to open, absolute, none or more
///
/// The studio answers with one byte; to `takes` the start answers `taken` and ends. Until it has, nothing is handed over, so
/// that a start that has waited long enough opens its files itself and nobody else does.
struct HandOver {
    QByteArray version;
    QByteArray token;
    QByteArrayList paths; ///< As the system has them, of any bytes.
    std::optional<PaintSheet::Kind> sheet = {};

    static constexpr std::size_t kLengthBytes = 4, kMostBytes = 1'000'000; // with the length
    static constexpr char kTakes = 'y', kRefuses = 'n', kTaken = 'k';

    std::optional<QByteArray>
    encoded() const; ///< Nothing where it is too long, or would not come out as it is.
    /// The whole length of the message that begins so; nothing while that cannot be told. More than `kMostBytes` is none.
    static std::optional<std::size_t> lengthOf(const QByteArray& start);
    /// Of a whole message; nothing where it is none.
    static std::optional<HandOver> decoded(const QByteArray& message);

    bool operator==(const HandOver&) const = default;
};

} // namespace qirn

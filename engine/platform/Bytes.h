#pragma once
#include <cstdint>
#include <span>

#include <QByteArray>

namespace qirn {

/// The bytes of an array as the engine passes them; it borrows them.
inline std::span<const uint8_t> bytesOf(const QByteArray& array) {
    return {reinterpret_cast<const uint8_t*>(array.constData()), static_cast<std::size_t>(array.size())};
}

} // namespace qirn

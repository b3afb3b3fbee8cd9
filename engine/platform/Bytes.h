#pragma once
#include "platform/CheckedMath.h"

#include <cstdint>
#include <cstring>
#include <span>

#include <QByteArray>

namespace qirn {

/// The bytes of an array as the engine passes them; it borrows them.
inline std::span<const uint8_t> bytesOf(const QByteArray& array) {
    return {reinterpret_cast<const uint8_t*>(array.constData()), checkedSize(array.size())};
}

/// Whether each of `count` elements of `elementBytes` bytes equals the first.
inline bool allAlike(const uint8_t* elements, int64_t count, int64_t elementBytes = 1) {
    return count <= 1 ||
           std::memcmp(elements, elements + elementBytes, checkedSize(elementBytes * (count - 1))) == 0;
}

} // namespace qirn

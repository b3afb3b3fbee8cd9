#include "formats/common/ByteReader.h"

#include "platform/CheckedMath.h"
#include "platform/Require.h"

namespace qirn {

namespace {

/// High byte first.
template <class T> T numberIn(std::span<const uint8_t> bytes) {
    T value = 0;
    for (const uint8_t byte : bytes) value = static_cast<T>(value << 8 | byte);
    return value;
}

template <class T> void put(T value, char* bytes) {
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes[i] = static_cast<char>(value >> (8 * (sizeof(T) - 1 - i)));
}

template <class T> void add(QByteArray& bytes, T value) {
    char block[sizeof(T)];
    put(value, block);
    bytes.append(block, sizeof(T));
}

} // namespace

uint8_t BEReader::u8() {
    return slice(1)[0];
}

uint16_t BEReader::u16() {
    return numberIn<uint16_t>(slice(2));
}

uint32_t BEReader::u32() {
    return numberIn<uint32_t>(slice(4));
}

uint64_t BEReader::u64() {
    return numberIn<uint64_t>(slice(8));
}

std::span<const uint8_t> BEReader::slice(int64_t count) {
    if (count < 0 || count > remaining()) throw Short();
    const auto part = bytes_.subspan(checkedSize(pos_), checkedSize(count));
    pos_ += count;
    return part;
}

std::string_view BEReader::text(int64_t count) {
    const auto letters = slice(count);
    return {reinterpret_cast<const char*>(letters.data()), letters.size()};
}

void BEReader::moveTo(int64_t position) {
    if (position < 0 || position > size()) throw Short();
    pos_ = position;
}

void BEWriter::u16(uint16_t value) {
    add(bytes_, value);
}

void BEWriter::u32(uint32_t value) {
    add(bytes_, value);
}

void BEWriter::bytes(std::span<const uint8_t> block) {
    bytes_.append(reinterpret_cast<const char*>(block.data()), static_cast<qsizetype>(block.size()));
}

std::span<uint8_t> BEWriter::grow(int64_t count) {
    require(count >= 0);
    const qsizetype before = bytes_.size(), needed = before + static_cast<qsizetype>(count);
    if (needed > bytes_.capacity()) bytes_.reserve(needed + needed / 4); // by itself it would double
    bytes_.resize(needed);
    return {reinterpret_cast<uint8_t*>(bytes_.data()) + before, checkedSize(count)};
}

void BEWriter::patchU32(int64_t at, uint32_t value) {
    require(at >= 0 && at + 4 <= size());
    put(value, bytes_.data() + at);
}

} // namespace qirn

#pragma once
#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string_view>

#include <QByteArray>

namespace qirn {

/// Reads numbers high byte first from bytes that it borrows. A read past the end throws and moves nothing, so that
/// parsing reads as a straight line.
class BEReader {
public:
    struct Short : std::exception { ///< The bytes end too early.
        const char* what() const noexcept override { return "too few bytes"; }
    };

    explicit BEReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    uint8_t u8();
    uint16_t u16();
    uint32_t u32();
    uint64_t u64();
    int16_t i16() { return static_cast<int16_t>(u16()); }
    int32_t i32() { return static_cast<int32_t>(u32()); }
    std::span<const uint8_t> slice(int64_t count); ///< The next bytes; a negative count throws as well.
    std::string_view text(int64_t count);          ///< The same as letters of a byte each.
    void skip(int64_t count) { slice(count); }

    int64_t pos() const { return pos_; }
    /// Goes to any place from the start up to the end of the bytes, else throws.
    void moveTo(int64_t position);
    int64_t size() const { return static_cast<int64_t>(bytes_.size()); }
    int64_t remaining() const { return size() - pos_; }

private:
    std::span<const uint8_t> bytes_;
    int64_t pos_ = 0;
};

/// A growing row of bytes to which numbers are added high byte first.
class BEWriter {
public:
    void u8(uint8_t value) { bytes_.append(static_cast<char>(value)); }
    void u16(uint16_t value);
    void u32(uint32_t value);
    void i16(int16_t value) { u16(static_cast<uint16_t>(value)); }
    void i32(int32_t value) { u32(static_cast<uint32_t>(value)); }
    void bytes(std::span<const uint8_t> block);
    void bytes(const QByteArray& block) { bytes_.append(block); }
    void zeros(int64_t count) { bytes_.append(static_cast<qsizetype>(count), '\0'); }
    /// Appends so many bytes, which the caller fills before it adds anything else.
    std::span<uint8_t> grow(int64_t count);
    /// Writes over four bytes that are there: the length of a section, once it is known.
    void patchU32(int64_t at, uint32_t value);

    int64_t size() const { return bytes_.size(); }
    const QByteArray& data() const { return bytes_; }
    QByteArray take() { return std::move(bytes_); }

private:
    QByteArray bytes_;
};

} // namespace qirn

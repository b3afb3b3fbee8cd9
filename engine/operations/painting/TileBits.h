#pragma once
#include "core/Tile.h"
#include "platform/CheckedMath.h"

#include <array>
#include <bit>
#include <cstdint>

namespace qirn {

/// A bit for each of the 256 pixels of a tile's row, or for each of its rows; the first is the lowest of its word.
struct BitRow {
    static constexpr int kWords = kTileSize / 64;
    std::array<uint64_t, kWords> words{};

    static BitRow first(int count) { ///< The first so many are set.
        BitRow row;
        for (int i = 0; i < kWords; ++i) {
            const int inWord = count - i * 64;
            row[i] = inWord >= 64 ? ~uint64_t{0} : inWord > 0 ? (uint64_t{1} << inWord) - 1 : 0;
        }
        return row;
    }

    uint64_t& operator[](int word) { return words[checkedSize(word)]; }
    uint64_t operator[](int word) const { return words[checkedSize(word)]; }
    bool has(int place) const { return ((*this)[place / 64] >> place % 64 & 1) != 0; }
    void set(int place) { (*this)[place / 64] |= uint64_t{1} << place % 64; }
    void clear(int place) { (*this)[place / 64] &= ~(uint64_t{1} << place % 64); }
    bool isEmpty() const { return (words[0] | words[1] | words[2] | words[3]) == 0; }

    int lowestFrom(int place) const { ///< The first that is set at or after the place; 256 if there is none.
        for (int i = place / 64; i < kWords; ++i) {
            const uint64_t rest = i == place / 64 ? (*this)[i] >> place % 64 << place % 64 : (*this)[i];
            if (rest) return i * 64 + std::countr_zero(rest);
        }
        return kTileSize;
    }
    int highestUpTo(int place) const { ///< The last that is set at or before the place; -1 if there is none.
        for (int i = place / 64; place >= 0 && i >= 0; --i) {
            const uint64_t rest =
                i == place / 64 ? (*this)[i] << (63 - place % 64) >> (63 - place % 64) : (*this)[i];
            if (rest) return i * 64 + 63 - std::countl_zero(rest);
        }
        return -1;
    }

    BitRow& operator|=(const BitRow& other) {
        for (int i = 0; i < kWords; ++i) (*this)[i] |= other[i];
        return *this;
    }
    BitRow& operator&=(const BitRow& other) {
        for (int i = 0; i < kWords; ++i) (*this)[i] &= other[i];
        return *this;
    }
    friend BitRow operator|(BitRow a, const BitRow& b) { return a |= b; }
    friend BitRow operator&(BitRow a, const BitRow& b) { return a &= b; }
    friend BitRow operator~(const BitRow& row) {
        BitRow result;
        for (int i = 0; i < kWords; ++i) result[i] = ~row[i];
        return result;
    }
    bool operator==(const BitRow&) const = default;
};

/// A bit for each pixel of a tile, top row first.
struct TileBits {
    std::array<BitRow, kTileSize> rows;

    BitRow& operator[](int y) { return rows[checkedSize(y)]; }
    const BitRow& operator[](int y) const { return rows[checkedSize(y)]; }
    BitRow anyRow() const { ///< Set where it is in one row or more.
        BitRow any;
        for (const BitRow& row : rows) any |= row;
        return any;
    }
    BitRow everyRow() const {
        BitRow every = ~BitRow();
        for (const BitRow& row : rows) every &= row;
        return every;
    }
};

} // namespace qirn

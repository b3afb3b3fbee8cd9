// Changes the manifest and the blob of a native document apart and puts them together with the right length, since a
// byte more in the manifest would otherwise move everything behind it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(uint8_t* data, std::size_t size, std::size_t maxSize);
extern "C" std::size_t LLVMFuzzerCustomMutator(uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed);

namespace {

constexpr std::size_t kHead = 12;

std::size_t manifestLength(const uint8_t* data) {
    return std::size_t{data[8]} | std::size_t{data[9]} << 8 | std::size_t{data[10]} << 16 |
           std::size_t{data[11]} << 24;
}

} // namespace

std::size_t LLVMFuzzerCustomMutator(uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed) {
    const bool isWhole = size > kHead && maxSize > size && manifestLength(data) <= size - kHead;
    if (!isWhole || seed % 16 == 0) return LLVMFuzzerMutate(data, size, maxSize);
    const std::size_t length = manifestLength(data);
    const std::size_t room = maxSize - size;
    if (seed % 4 == 1) {
        uint8_t* blob = data + kHead + length;
        const std::size_t blobSize = size - kHead - length;
        return kHead + length + LLVMFuzzerMutate(blob, blobSize, blobSize + room);
    }
    const std::vector<uint8_t> blob(data + kHead + length, data + size);
    const std::size_t changed = LLVMFuzzerMutate(data + kHead, length, length + room);
    for (unsigned i = 0; i < 4; ++i) data[8 + i] = static_cast<uint8_t>(changed >> (8 * i));
    std::copy(blob.begin(), blob.end(), data + kHead + changed);
    return kHead + changed + blob.size();
}

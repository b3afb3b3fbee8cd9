#pragma once
#include <atomic>
#include <cstdint>
#include <vector>

namespace qirn {

/// A tile as a file stores it, remembered with the tile so that saving again costs only what changed since. All
/// that is remembered together stays under a limit; what would go beyond is simply not kept, and what only a save
/// holds does not count.
class StoredForm {
public:
    enum class Coding { blank, raw, lzfse }; ///< Nothing; the tile's own bytes; `bytes`.
    static constexpr int64_t mostBytes = 256LL * 1024 * 1024;

    StoredForm(Coding coding, std::vector<uint8_t> bytes);
    ~StoredForm();
    StoredForm(const StoredForm&) = delete;
    StoredForm& operator=(const StoredForm&) = delete;

    static int64_t heldBytes(); ///< Of all that are remembered, each once however many tiles share it.

    const Coding coding;
    const std::vector<uint8_t> bytes;

    bool isCounted() const; ///< Among those that are remembered; the first time only if the limit allows it.

private:
    mutable std::atomic<bool> counted_ = false;
};

} // namespace qirn

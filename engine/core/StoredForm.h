#pragma once
#include <atomic>
#include <cstdint>
#include <vector>

namespace qirn {

/// A tile encoded as in a file, cached with the tile so that saving again encodes only what changed. All cached forms
/// together stay under a limit; beyond it a form is not cached. A form that only a save in progress holds does not
/// count.
class StoredForm {
public:
    enum class Coding { blank, raw, lzfse }; ///< Nothing; the tile's own bytes; `bytes`.
    static constexpr int64_t mostBytes = 256LL * 1024 * 1024;

    StoredForm(Coding coding, std::vector<uint8_t> bytes, int64_t checksum);
    ~StoredForm();
    StoredForm(const StoredForm&) = delete;
    StoredForm& operator=(const StoredForm&) = delete;

    static int64_t heldBytes(); ///< Of all cached forms, each counted once however many tiles share it.

    const Coding coding;
    const std::vector<uint8_t> bytes;
    const int64_t checksum; ///< Of what the file holds of the tile, as the file has it.

    bool isCounted() const; ///< Counts the form towards the limit; false if that would exceed it.

private:
    mutable std::atomic<bool> counted_ = false;
};

} // namespace qirn

#include "core/StoredForm.h"

#include <utility>

namespace qirn {

namespace {
std::atomic<int64_t> heldByForms = 0;
} // namespace

StoredForm::StoredForm(Coding how, std::vector<uint8_t> stream, int64_t sum)
    : coding(how),
      bytes(std::move(stream)),
      checksum(sum) {}

StoredForm::~StoredForm() {
    if (counted_) heldByForms -= static_cast<int64_t>(bytes.size());
}

// No other thread has the form yet: it is shared once it is counted.
bool StoredForm::isCounted() const {
    const auto size = static_cast<int64_t>(bytes.size());
    if (counted_.exchange(true) || (heldByForms += size) <= mostBytes) return true;
    heldByForms -= size;
    counted_ = false;
    return false;
}

int64_t StoredForm::heldBytes() {
    return heldByForms;
}

} // namespace qirn

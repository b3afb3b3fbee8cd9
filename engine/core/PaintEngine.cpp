#include "core/PaintEngine.h"

namespace qirn {

const char* const PaintEngine::version = QIRN_VERSION;

uint64_t PaintEngine::fnv(std::span<const uint8_t> bytes) {
    uint64_t h = fnvStart;
    for (uint8_t byte : bytes) h = fnvStep(h, byte);
    return h;
}

} // namespace qirn

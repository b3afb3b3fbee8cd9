// Brush files: what is read is within the ranges of every setting, and comes back from its own text.
#include "MemoryWatch.h"
#include "brush/BrushFile.h"
#include "platform/Bytes.h"
#include "platform/Require.h"

using namespace qirn;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    fuzz::MemoryWatch memory;
    const auto brushes = BrushFile::decode({data, size});
    memory.requireWithin(brushes ? static_cast<int64_t>(brushes->size() * sizeof(BrushSettings)) : 0);
    if (!brushes) return 0;
    for (const BrushSettings& brush : *brushes) {
        for (const BrushField& field : kBrushFields) {
            if (!field.number) continue;
            const double value = brush.*field.number;
            require(value >= field.lower && value <= field.upper);
        }
    }
    require(BrushFile::decode(bytesOf(BrushFile::encode(*brushes))) == *brushes);
    return 0;
}

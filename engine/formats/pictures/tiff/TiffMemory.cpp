#include "formats/pictures/tiff/TiffMemory.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <tiffio.h>

namespace qirn {

namespace {

int sayNothing(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

struct Input {
    std::span<const uint8_t> bytes;
    uint64_t pos = 0;
};
struct Output {
    QByteArray* bytes;
    qsizetype pos = 0;
};

uint64_t moved(uint64_t pos, uint64_t size, uint64_t offset, int from) {
    return from == SEEK_SET ? offset : from == SEEK_CUR ? pos + offset : size + offset;
}

tmsize_t readInput(thandle_t handle, void* target, tmsize_t count) {
    auto& in = *static_cast<Input*>(handle);
    if (count <= 0 || in.pos >= in.bytes.size()) return 0;
    const std::size_t taken = std::min<std::size_t>(checkedSize(count), in.bytes.size() - in.pos);
    std::memcpy(target, in.bytes.data() + in.pos, taken);
    in.pos += taken;
    return static_cast<tmsize_t>(taken);
}
tmsize_t writeNothing(thandle_t, void*, tmsize_t) {
    return 0;
}
toff_t seekInput(thandle_t handle, toff_t offset, int from) {
    auto& in = *static_cast<Input*>(handle);
    return in.pos = moved(in.pos, in.bytes.size(), offset, from);
}
int closeInput(thandle_t handle) {
    delete static_cast<Input*>(handle);
    return 0;
}
toff_t sizeOfInput(thandle_t handle) {
    return static_cast<Input*>(handle)->bytes.size();
}

tmsize_t readOutput(thandle_t handle, void* target, tmsize_t count) {
    auto& out = *static_cast<Output*>(handle);
    const tmsize_t taken = std::clamp<tmsize_t>(out.bytes->size() - out.pos, 0, count);
    std::memcpy(target, out.bytes->constData() + out.pos, checkedSize(taken));
    out.pos += taken;
    return taken;
}
tmsize_t writeOutput(thandle_t handle, void* source, tmsize_t count) {
    auto& out = *static_cast<Output*>(handle);
    try {
        if (out.pos + count > out.bytes->size()) out.bytes->resize(out.pos + count);
    } catch (const std::bad_alloc&) {
        return 0; // no exception may pass through the library
    }
    std::memcpy(out.bytes->data() + out.pos, source, checkedSize(count));
    out.pos += count;
    return count;
}
toff_t seekOutput(thandle_t handle, toff_t offset, int from) {
    auto& out = *static_cast<Output*>(handle);
    out.pos = static_cast<qsizetype>(
        moved(static_cast<uint64_t>(out.pos), static_cast<uint64_t>(out.bytes->size()), offset, from));
    return static_cast<toff_t>(out.pos);
}
int closeOutput(thandle_t handle) {
    delete static_cast<Output*>(handle);
    return 0;
}
toff_t sizeOfOutput(thandle_t handle) {
    return static_cast<toff_t>(static_cast<Output*>(handle)->bytes->size());
}

struct OptionsDeleter {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
std::unique_ptr<TIFFOpenOptions, OptionsDeleter> quietOptions() {
    std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    if (options) {
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), sayNothing, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), sayNothing, nullptr);
    }
    return options;
}

} // namespace

void TiffCloser::operator()(tiff* file) const {
    TIFFClose(file);
}

TiffHandle openTiff(std::span<const uint8_t> file, int64_t largestAllocation) {
    const auto options = quietOptions();
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), largestAllocation);
    auto input = std::make_unique<Input>(Input{file});
    // "m": through these functions, not by mapping.
    TiffHandle handle(TIFFClientOpenExt("picture", "rm", input.get(), readInput, writeNothing, seekInput,
                                        closeInput, sizeOfInput, nullptr, nullptr, options.get()));
    if (handle) input.release(); // closing deletes it; a failed opening does not close
    return handle;
}

TiffHandle createTiff(QByteArray& file, IsLarge isLarge) {
    const auto options = quietOptions();
    if (!options) return nullptr;
    auto output = std::make_unique<Output>(Output{&file});
    TiffHandle handle(TIFFClientOpenExt("picture", isLarge == IsLarge::yes ? "w8m" : "wm", output.get(),
                                        readOutput, writeOutput, seekOutput, closeOutput, sizeOfOutput,
                                        nullptr, nullptr, options.get()));
    if (handle) output.release();
    return handle;
}

} // namespace qirn

#pragma once
#include <csetjmp>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace qirn {

/// The JPEG library's way of stopping: it jumps out of whatever it is in, over no destructor of ours.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf stop;
};

[[noreturn]] inline void stopAtError(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->stop, 1);
}
inline void ignoreMessage(j_common_ptr, int) {}

} // namespace qirn

#pragma once
#include <csetjmp>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace qirn {

/// Errors of the JPEG library, which leave it by longjmp. The functions between have no destructors to run.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf stop;
};

[[noreturn]] inline void stopAtError(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->stop, 1);
}
inline void ignoreMessage(j_common_ptr, int) {}

} // namespace qirn

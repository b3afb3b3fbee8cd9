#include "platform/Require.h"

#include <cstdio>
#include <cstdlib>

namespace qirn {

void requirementFailed(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "Qirn Paint: broken invariant: %s (%s:%d)\n", condition, file, line);
    std::fflush(stderr);
    std::abort();
}

} // namespace qirn

#pragma once

namespace qirn {

/// Prints the broken condition with its place to standard error and stops the process.
[[noreturn]] void requirementFailed(const char* condition, const char* file, int line);

} // namespace qirn

/// States an invariant, in release builds too. Never for what a file, a user or a clock can cause.
#define require(...)                                                                                         \
    (static_cast<bool>(__VA_ARGS__) ? static_cast<void>(0)                                                   \
                                    : ::qirn::requirementFailed(#__VA_ARGS__, __FILE__, __LINE__))

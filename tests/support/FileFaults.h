#pragma once
#include "platform/files/FileCalls.h"

#include <cerrno>
#include <string_view>

namespace qirn::test {

/// Hands each call of the table to `visit(name, call)`. They stand as in the table, whose
/// number the compiler checks.
template <class Visit> void forEachCall(FileCalls& calls, Visit visit) {
    const char* const names[] = {"readlink", "stat",      "lstat",        "access", "listxattr", "getxattr",
                                 "list",     "mkdir",     "open",         "fstat",  "flock",     "fchmod",
                                 "fchown",   "fsetxattr", "fremovexattr", "read",   "pread",     "write",
                                 "fsync",    "dup",       "close",        "link",   "rename",    "unlink"};
    auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x] = calls;
    const char* const* name = names;
    const auto visitAll = [&](auto&... each) { (visit(*name++, each), ...); };
    visitAll(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x);
}

/// The same calls, with `before(name)` run in front of each: it returns 0, or the error with which the call fails instead of
/// being made; only a file is closed even then. It may be asked on any thread.
template <class Before> FileCalls withEachCall(FileCalls calls, Before before) {
    forEachCall(calls, [&]<class Result, class... Arguments>(const char* name,
                                                             std::function<Result(Arguments...)>& call) {
        call = [=, made = call](Arguments... arguments) -> Result {
            const int error = before(name);
            if (error == 0) return made(arguments...);
            if (name == std::string_view("close")) made(arguments...); // is lost even so
            errno = error;
            return -1;
        };
    });
    return calls;
}

} // namespace qirn::test

#pragma once
#include "platform/files/FileCalls.h"

#include <cerrno>
#include <string_view>

namespace qirn::test {

/// Hands each call of the table to `visit(name, call)`. A call that is added to the table has to be added here: the
/// number of names is checked by the compiler.
template <class Visit> void forEachCall(FileCalls& calls, Visit visit) {
    auto& [readlink, stat, lstat, access, listxattr, getxattr, list, mkdir, open, fstat, flock, fchmod,
           fchown, fsetxattr, fremovexattr, read, pread, write, fsync, dup, close, link, rename, unlink] = calls;
    visit("readlink", readlink);
    visit("stat", stat);
    visit("lstat", lstat);
    visit("access", access);
    visit("listxattr", listxattr);
    visit("getxattr", getxattr);
    visit("list", list);
    visit("mkdir", mkdir);
    visit("open", open);
    visit("fstat", fstat);
    visit("flock", flock);
    visit("fchmod", fchmod);
    visit("fchown", fchown);
    visit("fsetxattr", fsetxattr);
    visit("fremovexattr", fremovexattr);
    visit("read", read);
    visit("pread", pread);
    visit("write", write);
    visit("fsync", fsync);
    visit("dup", dup);
    visit("close", close);
    visit("link", link);
    visit("rename", rename);
    visit("unlink", unlink);
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

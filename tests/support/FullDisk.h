#pragma once
#include <csignal>

#include <sys/resource.h>

namespace qirn::test {

/// No file can grow beyond a few bytes: what a full disk does to a write.
class FullDisk {
public:
    FullDisk() : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit few{16, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &few);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

} // namespace qirn::test

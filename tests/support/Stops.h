#pragma once
#include <csignal>
#include <cstdio>

#include <sys/wait.h>
#include <unistd.h>

namespace qirn::test {

/// Whether an action stops the process, as a broken invariant must. It runs in a child, whose words are dropped.
template <class Action> bool stopsTheProcess(Action action) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL); // Qt Test has a handler that looks for a debugger
        if (!std::freopen("/dev/null", "w", stderr)) _exit(2);
        action();
        _exit(0);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
}

} // namespace qirn::test

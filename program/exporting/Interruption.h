#pragma once
#include <utility>
#include <vector>

#include <csignal>

namespace qirn {

/// Notes that the process is to end, by SIGINT, SIGTERM or SIGHUP, while it lives: work that asks can stop and tidy up. At
/// the end of its life the signal takes the effect that it would have had before. What the process was started to ignore
/// stays ignored, and a second signal ends it at once. At most one exists.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static bool hasCome(); ///< On any thread.

private:
    std::vector<std::pair<int, struct sigaction>> before_;
};

} // namespace qirn

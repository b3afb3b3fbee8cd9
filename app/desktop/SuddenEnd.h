#pragma once
#include <functional>

#include <QObject>

namespace qirn {

/// Runs `keepWork` before the process is ended from outside: by SIGTERM, SIGHUP or SIGINT, or with the display. It runs
/// once, on the main thread and between two events; then the process ends as it would have. At most one exists, created
/// and destroyed on the main thread, and last, so that it goes before everything that `keepWork` uses.
class SuddenEnd : public QObject {
public:
    explicit SuddenEnd(std::function<void()> keepWork);
    ~SuddenEnd() override;

private:
    struct Watch;
    void endBySignal();
    void keepWorkOnce();

    std::function<void()> keepWork_; // empty once it has begun
    int signals_[2] = {-1, -1};      // a pipe: the number of each signal that came
};

} // namespace qirn

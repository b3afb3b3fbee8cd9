#pragma once
#include <functional>

#include <QObject>

namespace qirn {

/// The end of the process from outside: SIGTERM, SIGHUP or SIGINT, and the loss of the display. Before it `keepWork` runs
/// once, on the main thread and between two events; then the process ends as it would have. One at a time, made and let
/// go on the main thread, and made last, so that all that `keepWork` uses is there until the very end.
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

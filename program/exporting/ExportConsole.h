#pragma once
#include "platform/Progress.h"

#include <chrono>
#include <mutex>

#include <QString>

namespace qirn {

/// Standard error: lines for whoever reads them, and on a terminal a last one that tells how far the work is.
class ExportConsole final : public ProgressWatcher {
public:
    ExportConsole();

    void say(const QString& line);   ///< Names in it may hold any bytes and signs.
    void begin(const QString& work); ///< What is shown with the percents from now on, cut to one line.
    void end();                      ///< The line that changes goes.
    bool isTerminal() const { return isTerminal_; }

    /// On any thread; false once the process is to end.
    bool goesOn(double fraction) override;

private:
    const bool isTerminal_;
    std::mutex writing_; // of what follows
    QByteArray work_;
    std::chrono::steady_clock::time_point shown_;
};

} // namespace qirn

#pragma once
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QString>

namespace qirn {

class CopyFiles;

/// What a session knows of its safety copy (Recovery.h). Main thread.
struct SafetyCopy {
    struct UnderWay {
        int64_t change; ///< Of the document.
        QDateTime date;
        std::shared_future<void>
            ended; ///< Rethrows why it failed; a broken promise where a later one took its place.
    };

    std::shared_ptr<CopyFiles>
        files; ///< Shared with the jobs that write them; null as long as there can be none.
    std::vector<UnderWay> underWay;
    /// When the latest was taken, by a clock that nobody sets; it stands still while the machine sleeps, as painting does.
    std::optional<std::chrono::steady_clock::time_point> taken;
    int failures = 0;    ///< In a row.
    QString reason;      ///< Of the last of them, in words for the user.
    bool isTold = false; ///< They were.
};

} // namespace qirn

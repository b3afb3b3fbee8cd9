#include "program/exporting/ExportConsole.h"

#include "platform/files/FilePath.h"
#include "program/exporting/Interruption.h"

#include <cstdio>

#include <unistd.h>

namespace qirn {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kBetween = std::chrono::milliseconds(100);
constexpr const char* kLineGone = "\r\033[K";

/// As the bytes that names are; what would move a terminal's cursor, or do worse, is not passed on.
QByteArray printable(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control) c = u'?';
    return bytesOfPath(text);
}

} // namespace

ExportConsole::ExportConsole() : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

void ExportConsole::say(const QString& line) {
    end();
    std::fprintf(stderr, "%s\n", printable(line).constData());
}

void ExportConsole::begin(const QString& work) {
    const std::lock_guard lock(writing_);
    work_ = printable(work);
    shown_ = {};
}

void ExportConsole::end() {
    if (isTerminal_) std::fputs(kLineGone, stderr);
}

bool ExportConsole::goesOn(double fraction) {
    if (Interruption::hasCome()) return false;
    if (!isTerminal_) return true;
    const std::unique_lock lock(writing_, std::try_to_lock); // nobody waits for another's line
    if (!lock || Clock::now() - shown_ < kBetween) return true;
    shown_ = Clock::now();
    std::fprintf(stderr, "%s%s %d%%", kLineGone, work_.constData(), static_cast<int>(fraction * 100));
    return true;
}

} // namespace qirn

#include "program/exporting/ExportConsole.h"

#include "platform/files/FilePath.h"
#include "program/exporting/Interruption.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
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

/// Cut in the middle, so that it and the percents have one line of the terminal: only that can be taken back. Signs
/// beyond Latin may be two columns wide.
QString fitted(QString text) {
    constexpr int kPercents = 6;
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const int room = (isKnown ? size.ws_col : 80) - kPercents;
    const auto width = [&text] {
        return text.size() +
               std::count_if(text.begin(), text.end(), [](QChar c) { return c > u'ɏ' && c != u'…'; });
    };
    if (width() <= room) return text;
    while (!text.isEmpty() && width() >= room) text.remove(text.size() / 2, 1);
    return text.insert(text.size() / 2, u'…');
}

} // namespace

ExportConsole::ExportConsole() : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

void ExportConsole::say(const QString& line) {
    end();
    std::fprintf(stderr, "%s\n", printable(line).constData());
}

void ExportConsole::begin(const QString& work) {
    const std::lock_guard lock(writing_);
    work_ = printable(fitted(work));
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

#include "platform/files/TemporaryFile.h"

#include "platform/files/FileError.h"
#include "platform/files/FilePath.h"

#include <array>
#include <cerrno>
#include <regex>

#include <QCryptographicHash>
#include <QUuid>
#include <fcntl.h>
#include <sys/file.h>

namespace qirn {

namespace {

// So many programs may write one file at once under names that the next save looks for; more take others, of chance.
constexpr int kNumbers = 3;
constexpr int kAttempts = 16;
constexpr std::size_t kMostOfName = 100; // bytes, so that the hidden name fits wherever the target's does

/// What begins the hidden names of files for the target, with the path: its name, shortened at the beginning of a
/// character, and a hash, by which names that begin alike differ.
std::string hiddenNameOf(const std::string& target) {
    const std::string folder = folderOf(target);
    std::string name = target.substr(folder.size());
    const QByteArray hash = QCryptographicHash::hash(name, QCryptographicHash::Md5).toHex().left(8);
    if (name.size() > kMostOfName) {
        std::size_t end = kMostOfName;
        while (end > 0 && (static_cast<uint8_t>(name[end]) & 0xC0) == 0x80) --end;
        name.resize(end);
    }
    return folder + '.' + name + ".qirn-" + hash.toStdString() + '-';
}

/// Names in the order in which they are tried.
std::string hiddenName(const std::string& first, int attempt) {
    if (attempt <= kNumbers) return first + std::to_string(attempt);
    return first + QUuid::createUuid().toString(QUuid::Id128).left(12).toStdString();
}

bool isHiddenName(const std::string& name) {
    // The first form is that of earlier versions.
    static const std::regex form("\\.qirn-[0-9a-f]{12}|\\..*\\.qirn-[0-9a-f]{8}-([0-9]|[0-9a-f]{12})");
    return std::regex_match(name, form);
}

/// False only where another has locked it: on file systems without locks everything counts as locked by us.
bool lock(const OpenFile& file) {
    return retried([&] { return file.calls().flock(file.descriptor(), LOCK_EX | LOCK_NB); }) >= 0 ||
           errno != EWOULDBLOCK;
}

OpenFile opened(const char* path, int flags, mode_t mode, const FileCalls& calls) {
    return {retried([&] { return calls.open(path, flags | O_CLOEXEC, mode); }), calls};
}

/// Nothing happens to what is locked, or where that cannot be known.
void removeIfLeft(const std::string& path, const FileCalls& calls) {
    const OpenFile file = opened(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0, calls);
    struct stat facts {};
    if (!file.isOpen() || calls.fstat(file.descriptor(), &facts) < 0 || !S_ISREG(facts.st_mode)) return;
    if (calls.flock(file.descriptor(), LOCK_EX | LOCK_NB) == 0 && file.isAt(path.c_str()))
        calls.unlink(path.c_str());
}

} // namespace

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::optional<TemporaryFile> TemporaryFile::unnamed(const std::string& target, mode_t mode,
                                                    const FileCalls& calls) {
    const std::string folder = folderOf(target);
    OpenFile file = opened(folder.empty() ? "." : folder.c_str(), O_WRONLY | O_TMPFILE, mode, calls);
    if (!file.isOpen()) return std::nullopt;
    lock(file);
    return TemporaryFile(std::move(file), target, {});
}

TemporaryFile TemporaryFile::hidden(const std::string& target, mode_t mode, const FileCalls& calls) {
    const std::string first = hiddenNameOf(target);
    for (int attempt = 1;; ++attempt) {
        const std::string path = hiddenName(first, attempt);
        OpenFile file = opened(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode, calls);
        if (!file.isOpen() && (errno != EEXIST || attempt == kAttempts)) throw FileError(errno);
        // Before it was locked, another may have taken it for one that was left.
        if (file.isOpen() && lock(file) && file.isAt(path.c_str()))
            return TemporaryFile(std::move(file), target, path);
        if (attempt == kAttempts) throw FileError(EEXIST);
    }
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : file_(std::move(other.file_)),
      target_(std::move(other.target_)),
      path_(std::exchange(other.path_, {})) {}

TemporaryFile::~TemporaryFile() {
    if (!path_.empty()) file_.calls().unlink(path_.c_str());
}

bool TemporaryFile::takeName() {
    const std::string first = hiddenNameOf(target_);
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        const std::string path = hiddenName(first, attempt);
        if (retried([&] { return file_.calls().link(file_.descriptor(), path.c_str()); }) >= 0) {
            path_ = path;
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}

void TemporaryFile::moveTo(const std::string& target) {
    const FileCalls& calls = file_.calls();
    const auto move = [&] { return calls.rename(path_.c_str(), target.c_str()); };
    // Some network folders report what they could not write only when a file is closed. The lock stays with this one.
    if (const int second = calls.dup(file_.descriptor()); second >= 0) OpenFile(second, calls).close();
    if (retried(move) < 0) {
        file_.close(); // there are some that move no open file
        checked(move);
    }
    path_.clear();
}

void removeLeftTemporaries(const std::string& target, const FileCalls& calls) {
    const std::string first = hiddenNameOf(target);
    for (int number = 1; number <= kNumbers; ++number) removeIfLeft(hiddenName(first, number), calls);
}

void sweepTemporaries(const QString& folder) {
    const FileCalls& calls = FileCalls::inUse();
    const std::string path = bytesOfPath(folder).toStdString();
    std::vector<std::string> names;
    if (calls.list(path.c_str(), names) < 0) return;
    for (const std::string& name : names) {
        if (isHiddenName(name)) removeIfLeft(path + '/' + name, calls);
    }
}

} // namespace qirn

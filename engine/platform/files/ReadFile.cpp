#include "platform/files/ReadFile.h"

#include "platform/CheckedMath.h"
#include "platform/files/FileError.h"
#include "platform/files/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include <QCoreApplication>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qirn {

namespace {

// Bytes that are read at a time beyond the stated length: files in /proc state 0.
constexpr qsizetype kGrowth = 64 * 1024;
constexpr qsizetype kPieceBytes = 1 << 20; // of one call: slow disks take a tenth of a second for them

[[noreturn]] void fail(int error) {
    const std::string words = std::generic_category().message(error);
    throw ReadError(error, QString::fromLocal8Bit(words.c_str()));
}

[[noreturn]] void refuse(const char* words) {
    throw ReadError(0, QCoreApplication::translate("ReadError", words));
}

/// Memory and swap that programs can still take, in bytes; all physical memory where the system does not tell.
int64_t freeMemory() {
    int64_t bytes = 0;
    if (std::FILE* facts = std::fopen("/proc/meminfo", "re")) {
        char line[128];
        while (std::fgets(line, sizeof line, facts)) {
            long long kilobytes = 0;
            if (std::sscanf(line, "MemAvailable: %lld", &kilobytes) == 1 ||
                std::sscanf(line, "SwapFree: %lld", &kilobytes) == 1)
                bytes += kilobytes * 1024;
        }
        std::fclose(facts);
    }
    return bytes > 0 ? bytes : static_cast<int64_t>(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
}

/// An open file descriptor, closed at the end of its life.
struct Descriptor {
    Descriptor(int opened, const FileCalls& calls_) : number(opened), calls(calls_) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0) calls.close(number);
    }
    int number; // negative: none
    const FileCalls& calls;
};

/// Opens without blocking, even a pipe that nobody writes to.
Descriptor openAtOnce(const QString& path) {
    const FileCalls& calls = FileCalls::inUse();
    const QByteArray name = bytesOfPath(path);
    int descriptor = -1;
    do {
        descriptor = calls.open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
    } while (descriptor < 0 && errno == EINTR);
    return {descriptor, calls};
}

/// What the descriptor is of; throws for what is no file.
struct stat factsOfFile(const Descriptor& file) {
    struct stat facts {};
    if (file.number < 0 || retried([&] { return file.calls.fstat(file.number, &facts); }) < 0) fail(errno);
    if (S_ISDIR(facts.st_mode)) refuse(QT_TRANSLATE_NOOP("ReadError", "This is a folder."));
    if (!S_ISREG(facts.st_mode))
        refuse(QT_TRANSLATE_NOOP("ReadError", "This is a device or a pipe, not a file."));
    return facts;
}

} // namespace

QByteArray readFile(const QString& path, int64_t mostBytes, const Progress& progress, FileStamp* stamp) {
    const Descriptor file = openAtOnce(path);
    const struct stat facts = factsOfFile(file);
    if (stamp) *stamp = FileStamp::of(facts);
    const int64_t most = std::min(mostBytes, freeMemory());
    QByteArray bytes;
    qsizetype length = 0;
    auto room = static_cast<qsizetype>(facts.st_size) + 1; // reading one byte more detects the end
    while (true) {
        if (room - 1 > most)
            refuse(QT_TRANSLATE_NOOP("ReadError", "The file is too large for the memory that is free."));
        bytes.resize(room);
        const ssize_t count = file.calls.read(file.number, bytes.data() + length,
                                              checkedSize(std::min(room - length, kPieceBytes)));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(errno);
        if (count == 0) break;
        length += count;
        progress.done(length, room);
        if (length == room) room += kGrowth;
    }
    bytes.truncate(length);
    return bytes;
}

FileParts::FileParts(const QString& path) : calls_(FileCalls::inUse()), descriptor_(-1) {
    Descriptor file = openAtOnce(path);
    factsOfFile(file);
    descriptor_ = std::exchange(file.number, -1);
}

FileParts::~FileParts() {
    calls_.close(descriptor_);
}

std::size_t FileParts::read(int64_t offset, std::span<uint8_t> target) const {
    std::size_t length = 0;
    while (length < target.size()) {
        const std::span<uint8_t> rest = target.subspan(length);
        const ssize_t got = retried([&] {
            return calls_.pread(descriptor_, rest.data(), rest.size(), offset + static_cast<int64_t>(length));
        });
        if (got < 0) fail(errno);
        if (got == 0) break;
        length += checkedSize(got);
    }
    return length;
}

} // namespace qirn

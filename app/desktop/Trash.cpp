#include "app/desktop/Trash.h"

#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "platform/files/Folders.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <fcntl.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kMostNames = 1000; // of the same picture in the same minute
constexpr const char* kInfoSuffix = ".trashinfo";
constexpr qsizetype kLongestName = 255 - 10; // bytes of a name to which the suffix is added

/// A Trash, and the top folder of the disk that it belongs to; empty for the user's own.
struct TrashFolder {
    std::string path;
    std::string top;
};

std::string encoded(const QString& path) {
    return bytesOfPath(path).toStdString();
}

dev_t diskOf(const std::string& path, const FileCalls& calls) {
    struct stat facts {};
    checked([&] { return calls.stat(path.c_str(), &facts); });
    return facts.st_dev;
}

void makeFolder(const std::string& path, const FileCalls& calls) {
    if (retried([&] { return calls.mkdir(path.c_str(), 0700); }) < 0 && errno != EEXIST)
        throw FileError(errno);
}

/// Whether the path is a folder and not a symbolic link, which somebody else may have put there.
bool isFolder(const std::string& path, const FileCalls& calls, struct stat& facts) {
    return retried([&] { return calls.lstat(path.c_str(), &facts); }) == 0 && S_ISDIR(facts.st_mode);
}

std::string topOfDisk(std::string folder, const FileCalls& calls) {
    const dev_t disk = diskOf(folder, calls);
    while (folder != "/") {
        const std::string parent = folder.substr(0, std::max<std::size_t>(folder.rfind('/'), 1));
        if (diskOf(parent, calls) != disk) break;
        folder = parent;
    }
    return folder;
}

TrashFolder trashOfDisk(const std::string& folder, const FileCalls& calls) {
    const std::string top = topOfDisk(folder, calls);
    const std::string user = std::to_string(getuid());
    const std::string inTop = top == "/" ? top : top + '/';
    struct stat facts {};
    const std::string common = inTop + ".Trash";
    // A shared Trash is safe only with the sticky bit, by which no user can remove what is another's.
    if (isFolder(common, calls, facts) && (facts.st_mode & S_ISVTX)) {
        const std::string own = common + '/' + user;
        if ((calls.mkdir(own.c_str(), 0700) == 0 || errno == EEXIST) && isFolder(own, calls, facts) &&
            facts.st_uid == getuid())
            return {own, inTop};
    }
    const std::string own = inTop + ".Trash-" + user;
    makeFolder(own, calls);
    if (!isFolder(own, calls, facts) || facts.st_uid != getuid()) throw FileError(EACCES);
    return {own, inTop};
}

TrashFolder trashFor(const std::string& folder, const FileCalls& calls) {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (!makeFolders(data)) throw FileError(errno);
    const std::string home = encoded(data) + "/Trash";
    makeFolder(home, calls);
    if (diskOf(home, calls) == diskOf(folder, calls)) return {home, {}};
    return trashOfDisk(folder, calls);
}

/// The name with its number, where that is above 1, before the extension; shortened to fit.
QString fittingName(const QString& name, int number) {
    const QFileInfo parts(name);
    const QString end = (number > 1 ? QStringLiteral(" %1").arg(number) : QString()) + u'.' + parts.suffix();
    QString base = parts.completeBaseName();
    while (!base.isEmpty() &&
           (base.back().isHighSurrogate() || QFile::encodeName(base + end).size() > kLongestName))
        base.chop(1);
    return base + end;
}

QByteArray infoText(const std::string& origin, const TrashFolder& trash) {
    // On another disk relative to its top folder: it may be mounted elsewhere the next time.
    const bool isRelative = !trash.top.empty() && origin.starts_with(trash.top);
    const QByteArray path = QByteArray::fromStdString(isRelative ? origin.substr(trash.top.size()) : origin);
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/") + "\nDeletionDate=" +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() + '\n';
}

/// The .trashinfo record of a file in the Trash. Created first and exclusively, it reserves the file's name; removed again
/// unless the file follows.
class TrashInfo {
public:
    TrashInfo(std::string path, const FileCalls& calls) : path_(std::move(path)), calls_(calls) {
        const int file = retried(
            [&] { return calls_.open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); });
        if (file < 0 && errno != EEXIST) throw FileError(errno);
        isOurs_ = file >= 0;
        if (isOurs_) calls_.close(file);
    }
    TrashInfo(const TrashInfo&) = delete;
    TrashInfo& operator=(const TrashInfo&) = delete;
    ~TrashInfo() {
        if (isOurs_) calls_.unlink(path_.c_str());
    }

    bool isOurs() const { return isOurs_; }
    void keep() { isOurs_ = false; }

private:
    std::string path_;
    const FileCalls& calls_;
    bool isOurs_ = false;
};

} // namespace

void moveToTrash(const QString& path, const QString& name, const QString& folder) {
    const FileCalls& calls = FileCalls::inUse();
    const TrashFolder trash = trashFor(encoded(QFileInfo(path).canonicalPath()), calls);
    const std::string files = trash.path + "/files/", infos = trash.path + "/info/";
    makeFolder(files, calls);
    makeFolder(infos, calls);
    for (int number = 1; number <= kMostNames; ++number) {
        const std::string taken = encoded(fittingName(name, number));
        const std::string infoPath = infos + taken + kInfoSuffix, filePath = files + taken;
        TrashInfo info(infoPath, calls);
        struct stat facts {};
        // A file that has no record must not be replaced either.
        if (!info.isOurs() || retried([&] { return calls.lstat(filePath.c_str(), &facts); }) == 0) continue;
        if (errno != ENOENT) throw FileError(errno);
        const QByteArray text = infoText(encoded(QDir(folder).filePath(fittingName(name, 1))), trash);
        writeAtomically(QFile::decodeName(infoPath.c_str()), bytesOf(text));
        checked([&] { return calls.rename(encoded(path).c_str(), filePath.c_str()); });
        info.keep();
        return;
    }
    throw FileError(EEXIST);
}

bool isInTrash(const QString& path) {
    const auto real = [](const QByteArray& name) {
        const std::unique_ptr<char, decltype(&std::free)> found(::realpath(name.constData(), nullptr),
                                                                std::free);
        return std::string(found ? found.get() : "");
    };
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const std::string home = real(bytesOfPath(data + QStringLiteral("/Trash"))),
                      file = real(bytesOfPath(path));
    // What lies in a Trash is somewhere below its "files", and the records are beside that.
    for (std::size_t end = 0; (end = file.find("/files/", end + 1)) != std::string::npos;) {
        const std::filesystem::path folder(file.substr(0, end));
        const std::string name = folder.filename().string();
        const bool isCalledSo =
            name == "Trash" || name.starts_with(".Trash-") || folder.parent_path().filename() == ".Trash";
        struct stat facts {};
        if (folder == home || (isCalledSo && isFolder((folder / "info").string(), FileCalls::inUse(), facts)))
            return true;
    }
    return false;
}

} // namespace qirn

#pragma once
#include "app/desktop/Trash.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"
#include "support/Studio.h"

#include <cerrno>
#include <deque>
#include <filesystem>
#include <thread>

#include <QDir>
#include <QElapsedTimer>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace qirn::test {

constexpr int kMostMilliseconds = 20'000; // longer counts as a hang

/// A studio, and a folder in which things are not as they should be.
struct Place : OwnWorld {
    QString folder = path("files");
    QString file = folder + "/Sea.qirnpaint"; ///< The picture's, and what is opened.
    std::unique_ptr<FileCallsInstead> calls;
    int changes = 0;
    std::vector<const char*> mounted, guarded;

    Place() {
        QDir().mkpath(folder);
        model.pictures().newDocument(300, 200, 72, PaintColor::white(), "Sea");
        fill({10, 10, 200, 100});
    }
    ~Place() {
        calls.reset();
        for (const char* one : guarded) setGuarded(one, false);
        for (const char* one : mounted) ::umount2(one, MNT_DETACH);
        std::filesystem::remove_all(name(folder)); // also what Qt cannot name
    }
    const char* name(const QString& of) const { return names_.emplace_back(bytesOfPath(of)).constData(); }
    const char* name() const { return name(file); }
    bool put(const QByteArray& content) const {
        QFile::remove(file);
        writeFile(file, content);
        return true;
    }
    bool link(const QString& target, const QString& at) const {
        return ::symlink(name(target), name(at)) == 0;
    }
    static bool setGuarded(const char* path, bool on) { // not even root may write to it
        const int opened = ::open(path, O_RDONLY);
        int flags = on ? FS_IMMUTABLE_FL : 0;
        const bool isSet = opened >= 0 && ::ioctl(opened, FS_IOC_SETFLAGS, &flags) == 0;
        ::close(opened);
        return isSet;
    }
    bool guard(const QString& path) {
        guarded.push_back(name(path));
        return setGuarded(name(path), true) || (getuid() != 0 && ::chmod(name(path), 0500) == 0);
    }
    bool mount(const char* options) {
        mounted.push_back(name(folder));
        return ::mount("none", name(folder), "tmpfs", 0, options) == 0;
    }
    template <class Change> bool with(Change change) {
        FileCalls changed = FileCalls::ofSystem();
        change(changed);
        calls = std::make_unique<FileCallsInstead>(changed);
        return true;
    }
    struct stat facts() const {
        return facts(file);
    }
    struct stat facts(const QString& of) const {
        struct stat found {};
        ::stat(name(of), &found);
        return found;
    }

private:
    mutable std::deque<QByteArray> names_; // borrowed by calls
};

inline QByteArray contentOf(const QString& path) { // without waiting for a pipe
    return QFileInfo(path).isFile() ? bytesAt(path) : QByteArray();
}

inline QStringList namesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

/// What the user was told last, in a line.
inline QString told(const Place& place) {
    if (place.desktop.asked.empty()) return "LOST: nothing was said";
    const auto& said = place.desktop.asked.back();
    return (said.title + ": " + said.text).section('\n', 0, 0);
}

// --- What is done. Each tells what came of it.

inline QString saveTo(Place& place, PictureFiles::SaveAs as) {
    place.fill({50, 50, 20, static_cast<int64_t>(++place.changes)}, {0, 0, 255, 255});
    const QByteArray before = contentOf(place.file);
    const QStringList names = namesIn(place.folder);
    const QUrl url = place.session().fileURL;
    place.desktop.savePaths = {place.file};
    if (!place.model.files().save(nullptr, as)) {
        if (!place.session().isDirty() || place.session().fileURL != url) return "LOST: counts as saved";
        if (!before.isEmpty() && !QFileInfo::exists(place.folder))
            QDir().rename(place.path("moved"), place.folder);
        if (contentOf(place.file) != before) return "LOST: the old file";
        return namesIn(place.folder) == names ? told(place) : "leaves " + namesIn(place.folder).join(' ');
    }
    place.calls.reset();
    const auto found = PaintFile::decode(bytesOf(readFile(place.session().fileURL.toLocalFile())));
    if (found->fingerprint() != place.doc().fingerprint() || place.session().isDirty())
        return "LOST: not as it is";
    for (const QString& name : namesIn(place.folder))
        if (name.startsWith('.') && !names.contains(name) && !place.session().fileURL.path().endsWith(name))
            return "leaves " + name;
    return "saved";
}
inline QString save(Place& place) {
    return saveTo(place, PictureFiles::SaveAs::no);
}
inline QString saveAs(Place& place) {
    return saveTo(place, PictureFiles::SaveAs::yes);
}
inline QString saveTwice(Place& place) { // the second is not asked about
    const QString first = save(place);
    place.calls.reset();
    return first + "; " + save(place);
}
inline QString flushFailsThenSave(Place& place) { // what was told is not told again as another program's work
    place.fill({50, 50, 20, 20}, {0, 255, 0, 255});
    if (place.model.files().save(nullptr, PictureFiles::SaveAs::no) || !place.session().isDirty())
        return "LOST";
    const QString first = told(place);
    place.calls.reset();
    return first + "; " + save(place);
}
inline QString open(Place& place) {
    const DocSession* before = place.model.current();
    place.model.files().open(place.file);
    if (place.model.current() == before) return told(place);
    return place.session().isDirty() ? "opens unsaved" : "opens";
}
inline QString exported(Place& place) {
    place.desktop.savePaths = {place.folder + "/Sea.png"};
    place.model.files().exportPicture(ExportFormat::png, 1, PaintColor::white());
    if (!place.desktop.asked.empty()) return told(place);
    return QImage(place.folder + "/Sea.png").size() == QSize(300, 200) ? "exported" : "LOST: no picture";
}
inline QString copied(Place& place) {
    place.fill({50, 50, 20, 20}, {0, 0, 255, 255});
    try {
        Recovery::write(place.session(), Recovery::Synchronously::yes);
    } catch (const std::exception&) {}
    place.calls.reset();
    if (!Recovery::isUpToDate(place.session()))
        return place.session().isDirty() ? "no copy; still open" : "LOST";
    const auto copy = PaintFile::decode(bytesOf(readFile(Recovery::fileURL(place.session().id))));
    return copy->fingerprint() == place.doc().fingerprint() ? "copied" : "LOST: not as it is";
}
inline QString stored(Place& place) {
    const ino_t before = place.facts(AppFolders::storeFile()).st_ino;
    double was = 0;
    {
        Store store(AppFolders::storeFile());
        was = store.number("a").value_or(0);
        store.set("b", 2);
    }
    const bool isKept = Store(AppFolders::storeFile()).number("b") == 2.0;
    bool isAside = false;
    for (const QString& name : namesIn(AppFolders::base()))
        isAside |=
            name.contains("unreadable") && place.facts(AppFolders::base() + '/' + name).st_ino == before;
    place.desktop.asked.clear();
    return QString(was == 1  ? "read"
                   : isAside ? "set aside"
                             : "not read") +
           (isKept ? ", kept" : ", not kept");
}

// --- What is wrong

inline bool saved(Place& place) { // first of all
    return save(place) == "saved";
}
inline bool fillUp(const Place& place) { // the disk
    QFile more(place.folder + "/more");
    if (!more.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return false;
    while (more.write(QByteArray(4096, 'x')) == 4096) {}
    return true;
}
inline bool moves(Place& place) { // while it is saved
    return place.with([&place](FileCalls& calls) {
        calls.fsync = [&place](int file) {
            ::rename(place.name(place.folder), place.name(place.path("moved")));
            return ::fsync(file);
        };
    });
}
inline bool storeHolds(const QByteArray& content) {
    writeFile(AppFolders::storeFile(), content);
    return true;
}
inline bool touched(const Place& place, time_t seconds) {
    const timespec times[] = {{seconds, 0}, {seconds, 0}};
    return ::utimensat(AT_FDCWD, place.name(), times, 0) == 0;
}
inline bool named(Place& place, const QByteArray& name) {
    place.file = place.folder + '/' + pathFromBytes(name);
    return true;
}
template <class Call, class... Arguments> void fails(std::function<Call(Arguments...)>& call, int error) {
    call = [error](Arguments...) -> Call {
        errno = error;
        return -1;
    };
}

inline void failsLast(FileCalls& calls, int error) { // the flush of the folder, once the new name is in it
    calls.fsync = [error](int file) {
        struct stat found {};
        ::fstat(file, &found);
        if (!S_ISDIR(found.st_mode)) return ::fsync(file);
        errno = error;
        return -1;
    };
}
/// A call that takes its time, as on a share far away: the delay is what is tried, and nothing waits for it to be over.
template <class Call, class... Arguments> void slow(std::function<Call(Arguments...)>& call) {
    call = [made = call](Arguments... arguments) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return made(arguments...);
    };
}
inline bool elsewhere(Place& place) { // another picture is the current one, and this one is closed
    DocSession& session = place.session();
    place.model.pictures().newDocument(30, 20, 72, std::nullopt, "Other");
    return place.model.pictures().close(session);
}
inline bool reopened(Place& place) {
    return elsewhere(place) && open(place) == "opens";
}
inline bool trashed(Place& place) {
    moveToTrash(place.file, "Sea.qirnpaint", place.folder);
    place.file = place.path("data/Trash/files/Sea.qirnpaint");
    return true;
}

// --- What else is to be seen

inline QString rightsOf(Place& place) {
    return QString::number(place.facts().st_mode & 07777, 8);
}
inline QString tagOf(Place& place, const char* name) {
    char value[100];
    const ssize_t length = ::getxattr(place.name(), name, value, sizeof value);
    return QString::fromLatin1(QByteArray(value, std::max<ssize_t>(length, 0)).toHex());
}
/// Owner rw, user 1234 rw, group r, mask rw, others none, as the system has them.
inline const QByteArray kAccessList = QByteArray::fromHex(
    "020000000100060 0ffffffff0200060 0d204000004000400ffffffff1000060 0ffffffff20000000ffffffff");

} // namespace qirn::test

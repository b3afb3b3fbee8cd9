#include "durability/OddPlaces.h"
#include "durability/Row.h"

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr const char* kAsked = "\"Sea.qirnpaint\" was changed by another program.: It is not as you opened "
                               "or saved it last. Overwriting it loses what the other program wrote.";
constexpr const char* kNoPicture = "Couldn't open Sea.qirnpaint: This picture could not be opened. It may be "
                                   "damaged or in a format this system cannot read.";

struct Case {
    const char* what;
    bool (*prepare)(Place& place); ///< False where it cannot be had here.
    QString (*act)(Place& place);
    const char* outcome;
    QString (*also)(Place& place) = nullptr; ///< What the outcome ends with.
};
// clang-format off
#define PLACE(...) [](Place& p) { return __VA_ARGS__; }
const Case kCases[] = {
    // Those of the file that is replaced
    {"an ordinary file", saved, save, "saved"},
    {"a link beside the file", PLACE(saved(p) && ::rename(p.name(), p.name(p.folder + "/real")) == 0 &&
     p.link("real", p.file)), saveTwice, "saved; saved; link", PLACE(QString(QFileInfo(p.file).isSymLink() ?
     "link" : "file"))},
    {"a link to a link in another folder", PLACE(p.link("../two", p.file) && p.link(p.path("three"),
     p.path("two"))), saveAs, "saved; link", PLACE(QString(QFileInfo(p.file).isSymLink() &&
     QFileInfo(p.path("three")).isFile() ? "link" : "file"))},
    {"links in a ring", PLACE(p.link("b", p.file) && p.link("Sea.qirnpaint", p.folder + "/b")), saveAs,
     "Couldn't save: The file could not be written (Too many levels of symbolic links)."},
    {"a second name of the file", PLACE(saved(p) && ::link(p.name(), p.name(p.path("second"))) == 0), save,
     "saved; the other is as it was", PLACE(QString(bytesAt(p.path("second")) != bytesAt(p.file) ?
     "the other is as it was" : "both"))},
    {"a folder of that name", PLACE(QDir().mkpath(p.file)), saveAs,
     "Couldn't save: A folder of this name is in the way."},
    {"a pipe of that name", PLACE(::mkfifo(p.name(), 0600) == 0), saveAs,
     "Couldn't save: The file could not be written (Invalid argument)."},
    {"a device of that name", PLACE(p.link("/dev/full", p.file)), saveAs,
     "Couldn't save: The file could not be written (Invalid argument)."},
    {"it has vanished", PLACE(saved(p) && QFile::remove(p.file)), save, "saved"},
    {"it is longer than it was", PLACE(saved(p) && ::truncate(p.name(), 100'000) == 0), save, kAsked},
    {"it is of another time", PLACE(saved(p) && touched(p, 1'000'000'000)), save, kAsked},
    {"it has other rights than it had", PLACE(saved(p) && ::chmod(p.name(), 0604) == 0), save, "saved; 604",
     &rightsOf},
    // Rights
    {"write-protected", PLACE(saved(p) && p.guard(p.file)), save,
     "Couldn't save: You do not have permission to write here."},
    {"in a write-protected folder", PLACE(saved(p) && p.guard(p.folder)), save,
     "Couldn't save: You do not have permission to write here."},
    {"on a disk for reading only", PLACE(p.mount("size=8m") && saved(p) && ::mount("none", p.name(p.folder),
     nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0), save, "Couldn't save: The disk is read-only."},
    {"mode 640", PLACE(saved(p) && ::chmod(p.name(), 0640) == 0), save, "saved; 640", &rightsOf},
    {"a new file under a mask", [](Place&) { return ::umask(027) <= 0777; }, saveAs, "saved; 640", PLACE((::umask(022),
     rightsOf(p)))},
    {"mode 4751", PLACE(saved(p) && ::chmod(p.name(), 04751) == 0), save, "saved; 751", &rightsOf},
    {"of another owner and group", PLACE(saved(p) && ::chown(p.name(), 1234, 2345) == 0), save,
     "saved; 1234:2345", PLACE(QString("%1:%2").arg(p.facts().st_uid).arg(p.facts().st_gid))},
    {"of a group that cannot be kept", PLACE(saved(p) && ::chown(p.name(), -1, 2345) == 0 && ::chmod(p.name(),
     0664) == 0 && p.with([](FileCalls& c) { fails(c.fchown, EPERM); })), save, "saved; 644", &rightsOf},
    {"attributes of the user's", PLACE(saved(p) && ::setxattr(p.name(), "user.tag", "blue", 4, 0) == 0), save,
     "saved; 626c7565", PLACE(tagOf(p, "user.tag"))},
    {"an access list", PLACE(saved(p) && ::setxattr(p.name(), "system.posix_acl_access", kAccessList.data(),
     kAccessList.size(), 0) == 0), save, "saved; the list", PLACE(tagOf(p, "system.posix_acl_access") ==
     QString::fromLatin1(kAccessList.toHex()) ? QString("the list") : QString("another, ") + rightsOf(p))},
    {"a disk that refuses modes", PLACE(saved(p) && ::chmod(p.name(), 0604) == 0 && p.with([](FileCalls& c) {
     fails(c.fchmod, EPERM); })), saveTwice, "saved; saved"},
    {"a disk that has no files without a name", PLACE(saved(p) && p.with([](FileCalls& c) { fails(c.link,
     EOPNOTSUPP); })), saveTwice, "saved; saved"},
    // Names
    {"a name of 255 bytes", PLACE(named(p, QByteArray(245, 'n') + ".qirnpaint")), saveAs, "saved"},
    {"a name of 256 bytes", PLACE(named(p, QByteArray(246, 'n') + ".qirnpaint")), saveAs,
     "Couldn't save: The name is too long."},
    {"a name that is not UTF-8", PLACE(named(p, "S\xe9\xff.qirnpaint")), saveAs, "saved"},
    {"a name of spaces, lines and quotes", PLACE(named(p, " \n\"'\\ .qirnpaint")), saveAs, "saved"},
    {"a name that is an ending", PLACE(named(p, ".qirnpaint")), saveAs, "saved"},
    {"a name that looks like an address", PLACE(named(p, "file:%2f?a=%41#b.qirnpaint")), saveAs, "saved"},
    {"a path of 5,000 bytes", [](Place& p) { p.file = p.folder + QString("/n").repeated(2500) + ".qirnpaint";
     return true; }, saveAs, "Couldn't save: The name is too long."},
    // Folders
    {"the folder has vanished", PLACE(saved(p) && QDir(p.folder).removeRecursively()), save,
     "Couldn't save: The folder does not exist."},
    {"the folder was moved", PLACE(saved(p) && QDir().rename(p.folder, p.path("moved"))), save,
     "Couldn't save: The folder does not exist."},
    {"the folder is a file now", PLACE(saved(p) && QDir(p.folder).removeRecursively() && (writeFile(p.folder,
     "x"), true)), save, "Couldn't save: The folder does not exist."},
    {"the disk is gone", PLACE(p.mount("size=8m") && saved(p) && ::umount2(p.name(p.folder), MNT_DETACH) ==
     0), save, "saved"},
    {"the disk is full", PLACE(p.mount("size=64k") && saved(p) && fillUp(p)), save,
     "Couldn't save: There is not enough space on the disk."},
    {"the folder is moved while it is saved", PLACE(saved(p) && moves(p)), save,
     "Couldn't save: The folder does not exist."},
    {"a slow disk", PLACE(saved(p) && p.with([](FileCalls& c) { slow(c.open); slow(c.write); slow(c.fsync);
     slow(c.rename); slow(c.stat); })), saveTwice, "saved; saved"},
    {"the last flush fails", PLACE(saved(p) && p.with([](FileCalls& c) { failsLast(c, EIO); })),
     flushFailsThenSave,
     "Couldn't save: The file is written, but the disk reported an error: it may not outlast a power cut.; saved"},
    {"a disk that cannot flush folders", PLACE(saved(p) && p.with([](FileCalls& c) { failsLast(c, EINVAL); })),
     saveTwice, "saved; saved"},
    // Clocks
    {"its time lies far ahead", PLACE(saved(p) && touched(p, 7'000'000'000) && reopened(p)), saveTwice,
     "saved; saved"},
    {"its time lies before 1970", PLACE(saved(p) && touched(p, -1) && reopened(p)), saveTwice,
     "saved; saved"},
    // What is opened
    {"an empty document", PLACE(p.put("")), open, kNoPicture},
    {"a text", PLACE(p.put("not a picture")), open, kNoPicture},
    {"nothing at all", [](Place&) { return true; }, open, "Couldn't open Sea.qirnpaint: No such file or directory"},
    {"a document that was cut", PLACE(saved(p) && ::truncate(p.name(), p.facts().st_size - 1000) == 0 &&
     elsewhere(p)), open,
     "Couldn't open Sea.qirnpaint: The Qirn Paint document is damaged (tile 0). Try File → Recover Autosaved Work."},
    {"a pipe", PLACE(::mkfifo(p.name(), 0600) == 0), open,
     "Couldn't open Sea.qirnpaint: This is a device or a pipe, not a file."},
    {"a device without end", PLACE(p.link("/dev/zero", p.file)), open,
     "Couldn't open Sea.qirnpaint: This is a device or a pipe, not a file."},
    {"a folder", PLACE(QDir().mkpath(p.file)), open, "Couldn't open Sea.qirnpaint: This is a folder."},
    {"a file with a hole of a terabyte", PLACE(p.put("Q") && ::truncate(p.name(), int64_t{1} << 40) == 0),
     open, "Couldn't open Sea.qirnpaint: The file is too large for the memory that is free."},
    {"a file that may not be read", PLACE(saved(p) && elsewhere(p) && p.with([](FileCalls& c) { fails(c.open,
     EACCES); })), open, "Couldn't open Sea.qirnpaint: Permission denied"},
    {"a disk that fails", PLACE(saved(p) && elsewhere(p) && p.with([](FileCalls& c) { fails(c.read, EIO); })),
     open, "Couldn't open Sea.qirnpaint: Input/output error"},
    {"a document in the Trash", PLACE(saved(p) && elsewhere(p) && trashed(p)), open, "opens unsaved"},
    // Exports
    {"over a link", PLACE(p.link("../elsewhere.png", p.folder + "/Sea.png")), exported, "exported"},
    {"into a folder that has vanished", PLACE(QDir(p.folder).removeRecursively()), exported,
     "Couldn't export: The folder does not exist."},
    {"over a folder", PLACE(QDir().mkpath(p.folder + "/Sea.png")), exported,
     "Couldn't export: A folder of this name is in the way."},
    // Safety copies
    {"their folder is a file", PLACE(QDir(AppFolders::autosave()).removeRecursively() &&
     (writeFile(p.path("Autosave"), "x"), true)), copied, "no copy; still open"},
    {"their disk is full", PLACE(p.with([](FileCalls& c) { fails(c.write, ENOSPC); })), copied,
     "no copy; still open"},
    {"a link under a copy's name", PLACE(p.put("dear") && p.link(p.file, Recovery::fileURL(p.session().id))),
     copied, "copied; dear", PLACE(QString::fromUtf8(bytesAt(p.file)))},
    // The store
    {"a store that was cut", [](Place&) { return storeHolds("{\"a\":1"); }, stored, "set aside, kept"},
    {"a list for a store", [](Place&) { return storeHolds("[1]"); }, stored, "set aside, kept"},
    {"a store of 100 gigabytes", PLACE(storeHolds("{") && ::truncate(p.name(AppFolders::storeFile()),
     100'000'000'000) == 0), stored, "set aside, kept"},
    {"a store that is a pipe", PLACE(::mkfifo(p.name(AppFolders::storeFile()), 0600) == 0), stored,
     "set aside, kept"},
    {"an empty store", [](Place&) { return storeHolds(""); }, stored, "set aside, kept"},
    {"a store of other values", [](Place&) { return storeHolds("{\"a\":{\"b\":[]}}"); }, stored,
     "not read, kept"},
    {"a store that is a link", PLACE(p.put("{\"a\":1}") && p.link(p.file, AppFolders::storeFile())), stored,
     "read, kept"},
    {"a store that is a folder", [](Place&) { return QDir().mkpath(AppFolders::storeFile()); }, stored,
     "set aside, kept"},
    {"a store on a full disk", PLACE(storeHolds("{\"a\":1}") && p.with([](FileCalls& c) { fails(c.write,
     ENOSPC); })), stored, "read, not kept"},
};
#undef PLACE
// clang-format on

} // namespace

class tst_OddPlaces : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachHasItsOutcome() {
        QStringList leftOut;
        int64_t done = 0, others = 0;
        for (const Case& one : kCases) {
            Place place;
            if (!one.prepare(place)) {
                leftOut << QString::fromUtf8(one.what);
                continue;
            }
            QElapsedTimer clock;
            clock.start();
            QString outcome = one.act(place);
            if (one.also) outcome += "; " + one.also(place);
            if (clock.elapsed() > kMostMilliseconds) outcome += ", after " + QString::number(clock.elapsed());
            if (isLongForm() || outcome != QString::fromUtf8(one.outcome))
                qWarning("%s: %s", one.what, qPrintable(outcome));
            others += outcome != QString::fromUtf8(one.outcome);
            ++done;
        }
        QCOMPARE(others, 0);
        tellRow("links, modes, owners, ACLs, odd names, vanishing and slow folders, clocks, damaged stores",
                done, "each as written down, 0 silent losses, 0 hangs",
                leftOut.isEmpty() ? "nothing" : "not to be had here: " + leftOut.join(", "));
    }
};

QIRN_TEST(tst_OddPlaces)
#include "tst_OddPlaces.moc"

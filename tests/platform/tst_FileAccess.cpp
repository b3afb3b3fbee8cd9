#include "core/SeededRandom.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/Folders.h"
#include "support/FileFaults.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <map>
#include <set>

#include <QTemporaryDir>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

using List = std::vector<uint8_t>;
constexpr const char* kList = "system.posix_acl_access";
constexpr const char* kDefault = "system.posix_acl_default"; // of a folder
constexpr uint32_t kNamedUser = 4001, kNamedGroup = 4002, kOtherGroup = 4003;

struct Access {
    mode_t mode = 0;
    uint32_t group = 0;
    List list;
    bool operator==(const Access&) const = default;
};
struct Person {
    uint32_t user = 0;
    std::set<uint32_t> groups;
};

List listOf(const std::vector<std::array<uint32_t, 3>>& entries) { // tag, rights, whom
    List list{2, 0, 0, 0};
    for (const auto& [tag, rights, whom] : entries) {
        for (const uint32_t part : {tag, rights, whom & 0xFFFF, whom >> 16}) {
            list.push_back(static_cast<uint8_t>(part & 0xFF));
            list.push_back(static_cast<uint8_t>(part >> 8));
        }
    }
    return list;
}

/// What somebody who is not the owner may do, as the system decides it.
unsigned rightsOf(const Person& person, const Access& access) {
    const auto in = [&](uint32_t group) { return person.groups.contains(group); };
    if (access.list.empty()) return access.mode >> (in(access.group) ? 3 : 0) & 7;
    std::map<unsigned, unsigned> rights; // by tag; whom they name is known
    for (std::size_t i = 4; i < access.list.size(); i += 8) rights[access.list[i]] = access.list[i + 2];
    const unsigned mask = rights.contains(0x10) ? rights[0x10] : 7;
    if (person.user == kNamedUser && rights.contains(2)) return rights[2] & mask;
    const bool inNamed = in(kNamedGroup) && rights.contains(8);
    if (!in(access.group) && !inNamed) return rights[0x20];
    return ((in(access.group) ? rights[4] : 0) | (inNamed ? rights[8] : 0)) & mask;
}

Access accessOf(int file) {
    Access access;
    struct stat facts {};
    if (::fstat(file, &facts) < 0) return access;
    access.mode = facts.st_mode & 07777;
    access.group = facts.st_gid;
    access.list.resize(4096);
    access.list.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, ::fgetxattr(file, kList, access.list.data(), access.list.size()))));
    return access;
}

} // namespace

class tst_FileAccess : public QObject {
    Q_OBJECT
private Q_SLOTS:
    /// Files with any access, saved over on systems that refuse some of it: after each call nobody may do more with
    /// the new file than with the old one, and where nothing is refused all is as it was.
    void nobodyMayDoMoreThanBefore() {
        SeededRandom random(7);
        const auto any = [&](uint32_t count) { return static_cast<uint32_t>(random.next() % count); };
        int kept = 0, withList = 0;
        for (int round = 0; round < 600; ++round) {
            const QTemporaryDir folder;
            const QByteArray path = QFile::encodeName(folder.filePath("picture"));
            writeFile(folder.filePath("picture"), "old");
            QCOMPARE(::chmod(path.constData(), 0600 | any(0100)), 0);
            QVERIFY(::setxattr(path.constData(), "user.note", "mine", 4, 0) == 0 || errno == ENOTSUP);
            const auto anyList = [&] {
                return listOf({{1, 6, ~0U},
                               {2, any(8), kNamedUser},
                               {4, any(8), ~0U},
                               {8, any(8), kNamedGroup},
                               {16, any(8), ~0U},
                               {32, any(8), ~0U}});
            };
            if (any(2)) {
                const List list = anyList();
                withList += ::setxattr(path.constData(), kList, list.data(), list.size(), 0) == 0;
            }
            if (any(2)) {
                const List list = anyList();
                ::setxattr(QFile::encodeName(folder.path()).constData(), kDefault, list.data(), list.size(),
                           0);
            }
            const int old = ::open(path.constData(), O_RDONLY);
            const Access before = accessOf(old);
            const auto chosen = [&](const char* call) { return any(3) == 0 ? std::string(call) : ""; };
            const std::set<std::string> refused{chosen("fchown"), chosen("fsetxattr"), chosen("fremovexattr"),
                                                chosen("fchmod"), chosen("link")};
            FileCalls calls = FileCalls::ofSystem();
            calls.fsync = [](int) { return 0; }; // takes long
            const bool isOtherGroup = refused.contains("fchown");
            int made = -1;
            bool isMore = false;
            const auto look = [&] {
                if (made < 0 || isMore) return;
                Access now = accessOf(made);
                if (isOtherGroup) now.group = kOtherGroup;
                for (unsigned i = 0; i < 16; ++i) {
                    Person person{i & 8 ? kNamedUser : 1, {}};
                    if (i & 1) person.groups.insert(before.group);
                    if (i & 2) person.groups.insert(kNamedGroup);
                    if (i & 4) person.groups.insert(kOtherGroup);
                    isMore |= (rightsOf(person, now) & ~rightsOf(person, before)) != 0;
                }
            };
            calls = withEachCall(calls, [&](const std::string& name) {
                look();
                return refused.contains(name) ? EPERM : 0;
            });
            calls.open = [&, open = calls.open](const char* file, int flags, mode_t mode) {
                const bool isRefused =
                    round % 3 == 0 && (flags & O_TMPFILE) == O_TMPFILE; // no files without a name
                const int result = isRefused ? (errno = EOPNOTSUPP, -1) : open(file, flags, mode);
                if ((flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE) made = result;
                return result;
            };
            calls.fstat = [&](int file, struct stat* facts) { // the folder gave it another group
                const int result = ::fstat(file, facts);
                if (isOtherGroup) facts->st_gid = kOtherGroup;
                return result;
            };
            {
                const FileCallsInstead inUse(calls);
                writeAtomically(folder.filePath("picture"), bytesOf(QByteArray("new")));
            }
            made = ::open(path.constData(), O_RDONLY);
            look();
            const Access after = accessOf(made);
            const bool isKept = after == before && bytesAt(folder.filePath("picture")) == "new";
            ::close(old);
            ::close(made);
            const auto report = QStringLiteral("round %1: %2 became %3")
                                    .arg(round)
                                    .arg(before.mode, 0, 8)
                                    .arg(after.mode, 0, 8);
            QVERIFY2(!isMore, qPrintable(report));
            std::set<std::string> essential = refused;
            for (const char* call : {"", "link"}) essential.erase(call);
            QVERIFY2(isKept || !essential.empty(), qPrintable(report));
            char note[8] = {};
            if (essential.empty() && ::getxattr(path.constData(), "user.note", note, sizeof note) < 0)
                QCOMPARE(errno, ENOTSUP);
            kept += isKept;
        }
        QVERIFY2(kept > 60, qPrintable(QString::number(kept)));
        if (withList == 0) QSKIP("The file system of the temporary folder has no access lists.");
    }

    void ownFilesAreForTheUserAlone() {
        const QTemporaryDir folder;
        const auto at = [&](const char* name) { return folder.filePath(name); };
        const auto linked = [&](const char* target, const char* name) {
            return ::symlink(QFile::encodeName(at(target)).constData(),
                             QFile::encodeName(at(name)).constData());
        };
        const auto modeOf = [&](const char* name) {
            struct stat facts {};
            ::lstat(QFile::encodeName(at(name)).constData(), &facts);
            return facts.st_mode;
        };
        const QByteArray text("mine");
        writeFile(at("target"), "another's");
        QCOMPARE(linked("target", "copy"), 0);
        QCOMPARE(linked("target", "store"), 0);
        QCOMPARE(linked("not yet", "brushes"), 0);
        writeOwnFile(at("copy"), bytesOf(text), UsersLinks::replaced);
        QCOMPARE(modeOf("copy"), mode_t{S_IFREG | 0600});
        QCOMPARE(bytesAt(at("target")), QByteArray("another's"));
        const mode_t mode = modeOf("target");
        for (const char* name : {"store", "brushes"}) {
            writeOwnFile(at(name), bytesOf(text), UsersLinks::followed);
            QVERIFY(S_ISLNK(modeOf(name)));
        }
        QCOMPARE(bytesAt(at("target")), text);
        QCOMPARE(modeOf("target"), mode);
        QCOMPARE(modeOf("not yet"), mode_t{S_IFREG | 0600});
        // A link that somebody else planted is none of the user's, nor is one to somebody else's file.
        for (const bool isLink : {true, false}) {
            FileCalls calls = FileCalls::ofSystem();
            auto& call = isLink ? calls.lstat : calls.stat;
            call = [made = call](const char* path, struct stat* found) {
                const int result = made(path, found);
                ++found->st_uid;
                return result;
            };
            const FileCallsInstead inUse(calls);
            QCOMPARE(linked("target", isLink ? "planted" : "to another's"), 0);
            writeOwnFile(at(isLink ? "planted" : "to another's"), bytesOf(text), UsersLinks::followed);
            QCOMPARE(modeOf(isLink ? "planted" : "to another's"), mode_t{S_IFREG | 0600});
        }
        QVERIFY(makeOwnFolder(at("a/b/")) && makeOwnFolder(at("a/b")));
        QCOMPARE(modeOf("a"), mode_t{S_IFDIR | 0700});
        QCOMPARE(::chmod(QFile::encodeName(at("a/b")).constData(), 0755), 0);
        QCOMPARE(linked("a/b", "kept elsewhere"), 0);
        QVERIFY(makeOwnFolder(at("kept elsewhere")));
        QCOMPARE(modeOf("a/b"), mode_t{S_IFDIR | 0755});
        QVERIFY(makeOwnFolder(at("a/b")) && !makeOwnFolder(at("copy")) && !makeOwnFolder(at("copy/c")));
        QCOMPARE(modeOf("a/b"), mode_t{S_IFDIR | 0700});
    }
};

QIRN_TEST(tst_FileAccess)
#include "tst_FileAccess.moc"

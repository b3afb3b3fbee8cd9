#include "platform/files/FileAccess.h"

#include "platform/CheckedMath.h"
#include "platform/files/FileError.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <span>

namespace qirn {

namespace {

constexpr const char* kList = "system.posix_acl_access";
constexpr std::size_t kMostBytes = 65536; // of all names and of a value, as the system itself allows
constexpr uid_t kSameOwner = static_cast<uid_t>(-1);

// A list has a header of four bytes and entries of eight: what it is for, rights (both two bytes, the lower one first),
// and whom it names.
constexpr std::size_t kHeader = 4, kEntry = 8, kRights = 2;
constexpr uint8_t kNamedUser = 0x02, kGroup = 0x04, kNamedGroup = 0x08, kOthers = 0x20;

// What says that there is no such thing, that it may not be read, and that it may not be set.
constexpr int kAbsent[] = {ENODATA, ENOTSUP, ENOSYS};
constexpr int kUnreadable[] = {ENODATA, ENOTSUP, ENOSYS, EPERM, EACCES, E2BIG, ERANGE};
constexpr int kRefused[] = {EPERM, EACCES, ENOTSUP, ENOSYS, EINVAL};

bool isOneOf(std::span<const int> errors, int error) {
    return std::find(errors.begin(), errors.end(), error) != errors.end();
}

/// The result of a call, negative where it failed with one of these errors; another is thrown.
template <class Call> auto tried(std::span<const int> errors, Call call) {
    const auto result = retried(call);
    if (result < 0 && !isOneOf(errors, errno)) throw FileError(errno);
    return result;
}

/// An attribute; nothing where one of these errors says so.
std::optional<std::vector<uint8_t>> attribute(const std::string& path, const char* name,
                                              std::span<const int> errors, const FileCalls& calls) {
    std::vector<uint8_t> value(kMostBytes);
    const ssize_t size =
        tried(errors, [&] { return calls.getxattr(path.c_str(), name, value.data(), value.size()); });
    if (size < 0) return std::nullopt;
    value.resize(checkedSize(size));
    return value;
}

std::vector<FileAccess::Attribute> attributesOf(const std::string& path, const FileCalls& calls) {
    std::vector<char> names(kMostBytes);
    const ssize_t size =
        tried(kUnreadable, [&] { return calls.listxattr(path.c_str(), names.data(), names.size()); });
    std::vector<FileAccess::Attribute> attributes;
    for (auto name = names.begin(), end = name + std::max<ssize_t>(size, 0); name < end;) {
        const std::string text(name, std::find(name, end, '\0'));
        name += std::ssize(text) + 1;
        if (!text.starts_with("user.")) continue;
        if (auto value = attribute(path, text.c_str(), kUnreadable, calls))
            attributes.push_back({text, *std::move(value)});
    }
    return attributes;
}

/// Rights, three bits each, of those who are neither the owner nor asked for by the mask.
struct Rights {
    unsigned group, others;
    unsigned named = 7;       // what all users and groups may that a list names
    unsigned namedGroups = 7; // the groups alone

    explicit Rights(mode_t mode) : group(mode >> 3 & 7), others(mode & 7) {}
    explicit Rights(const FileAccess& access) : Rights(access.mode) {
        const unsigned most = group; // the mask
        for (std::size_t i = kHeader; i + kEntry <= access.list.size(); i += kEntry) {
            const unsigned rights = access.list[i + kRights] & most;
            const uint8_t tag = access.list[i];
            if (tag == kGroup) group = rights;
            if (tag == kNamedUser || tag == kNamedGroup) named &= rights;
            if (tag == kNamedGroup) namedGroups &= rights;
        }
    }
    mode_t inMode(mode_t mode) const { return (mode & 0700) | group << 3 | others; }
};

/// The same list with other rights of the group and of everybody.
std::vector<uint8_t> listWith(std::vector<uint8_t> list, unsigned group, unsigned others) {
    for (std::size_t i = kHeader; i + kEntry <= list.size(); i += kEntry) {
        if (list[i] == kGroup) list[i + kRights] = static_cast<uint8_t>(group);
        if (list[i] == kOthers) list[i + kRights] = static_cast<uint8_t>(others);
    }
    return list;
}

/// Whether the group was kept; the owner only root can keep.
bool giveOwner(const FileAccess& access, const OpenFile& file) {
    const FileCalls& calls = file.calls();
    struct stat facts {};
    checked([&] { return calls.fstat(file.descriptor(), &facts); });
    const auto given = [&](uid_t owner) {
        return tried(kRefused, [&] { return calls.fchown(file.descriptor(), owner, access.group); }) >= 0;
    };
    if (facts.st_uid != access.owner && given(access.owner)) return true;
    return facts.st_gid == access.group || given(kSameOwner);
}

} // namespace

std::optional<FileAccess> FileAccess::of(const std::string& path, const FileCalls& calls) {
    struct stat facts {};
    if (retried([&] { return calls.stat(path.c_str(), &facts); }) < 0) {
        if (errno == ENOENT) return std::nullopt;
        throw FileError(errno);
    }
    if (S_ISDIR(facts.st_mode)) throw FileError(EISDIR);
    if (!S_ISREG(facts.st_mode)) throw FileError(EINVAL);
    auto list = attribute(path, kList, kAbsent, calls);
    return FileAccess{facts.st_mode & 0777, facts.st_uid, facts.st_gid,
                      list ? *std::move(list) : std::vector<uint8_t>(), attributesOf(path, calls)};
}

void FileAccess::giveTo(const OpenFile& file) const {
    const FileCalls& calls = file.calls();
    const int descriptor = file.descriptor();
    const auto set = [&](const char* name, const std::vector<uint8_t>& value) {
        return tried(kRefused,
                     [&] { return calls.fsetxattr(descriptor, name, value.data(), value.size(), 0); }) >= 0;
    };
    const bool hasGroup = giveOwner(*this, file);
    for (const Attribute& each : attributes) set(each.name.c_str(), each.value);

    Rights rights(*this);
    const unsigned common = rights.group & rights.others;
    if (!list.empty()) {
        // Who is in a group that the list names and in the new group has the rights of both.
        if (set(kList, hasGroup ? list : listWith(list, common & rights.namedGroups, common))) return;
        rights.group &= rights.named;
        rights.others &= rights.named;
    }
    if (!hasGroup) rights.group = rights.others = rights.group & rights.others;
    // A folder may have given the new file a list of its own, of which the mode's group would be the mask.
    const int removed = retried([&] { return calls.fremovexattr(descriptor, kList); });
    if (removed < 0 && !isOneOf(kAbsent, errno)) rights.group = 0;
    tried(kRefused, [&] { return calls.fchmod(descriptor, rights.inMode(mode)); });
}

} // namespace qirn

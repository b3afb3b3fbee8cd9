#pragma once
#include "platform/files/OpenFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace qirn {

/// Who may do what with a file, and what its owner noted about it: what a file that takes its place has to get. Bits by
/// which a program runs as somebody else are not among it: writing takes them from any file.
struct FileAccess {
    struct Attribute {
        std::string name;
        std::vector<uint8_t> value;
    };
    mode_t mode = 0600; ///< Nine bits; with an access list those of the group are the list's mask.
    uid_t owner = 0;
    gid_t group = 0;
    std::vector<uint8_t> list;              ///< The POSIX access list as the system keeps it; empty: none.
    std::vector<Attribute> attributes = {}; ///< user.*

    /// Of the file at the path; nothing where there is none. Throws FileError, also for what is no file.
    static std::optional<FileAccess> of(const std::string& path, const FileCalls& calls);

    /// Gives it to a file of our own, which nobody else may read yet. What cannot be kept shrinks, so that at no moment
    /// anybody may do more than before: without the owner's group, the group may do only what everybody may, and nobody
    /// what the group might not. What the file system refuses or does not know is left out; other failures are thrown.
    void giveTo(const OpenFile& file) const;
};

} // namespace qirn

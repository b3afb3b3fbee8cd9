#pragma once
#include "platform/files/OpenFile.h"

#include <optional>
#include <string>

#include <QString>

namespace qirn {

/// The folder of a path with its slash; empty for a bare name.
std::string folderOf(const std::string& path);

/// A new file on its way to the name of another, its target, locked as long as it lives. The system has such a file without
/// a name, which vanishes with a process that is killed; where it has not, and for the instant before it takes the
/// target's place, the name is hidden and made of the target's: ".picture.qirnpaint.qirn-0f1e2d3c-1". One that is under such
/// a name and not locked was left by a program that ended. Removed at the end of its life unless it has taken the
/// target's place.
class TemporaryFile {
public:
    /// Empty, for its owner alone unless the mode says otherwise. `unnamed` gives nothing where the system has no such
    /// file; `hidden` throws FileError.
    static std::optional<TemporaryFile> unnamed(const std::string& target, mode_t mode,
                                                const FileCalls& calls);
    static TemporaryFile hidden(const std::string& target, mode_t mode, const FileCalls& calls);
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    ~TemporaryFile();

    const OpenFile& file() const { return file_; }
    bool isUnnamed() const { return path_.empty(); }
    /// Gives an unnamed one its hidden name; false where the system cannot.
    bool takeName();
    void moveTo(const std::string& target); ///< Only with a name.
    void close() { file_.close(); }

private:
    TemporaryFile(OpenFile file, std::string target, std::string path)
        : file_(std::move(file)),
          target_(std::move(target)),
          path_(std::move(path)) {}

    OpenFile file_;
    std::string target_;
    std::string path_; // the hidden name; empty: none
};

/// Removes what ended programs left for this target.
void removeLeftTemporaries(const std::string& target, const FileCalls& calls);

/// Removes what ended programs left in a folder of our own, whatever it was for.
void sweepTemporaries(const QString& folder);

} // namespace qirn

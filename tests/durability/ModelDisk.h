#pragma once
#include "core/SeededRandom.h"
#include "platform/files/FileCalls.h"
#include "support/Files.h"

#include <map>
#include <memory>
#include <mutex>
#include <set>

#include <QDirIterator>
#include <fcntl.h>

namespace qirn::test {

inline constexpr std::size_t kPage = 4096;
inline constexpr std::size_t kMostPending = 8; // names of which every subset may be lost; of more, every end
inline constexpr std::size_t kMostVariants =
    64; // of the files' contents under the same names; more are chosen by chance

/// Keeps a log of what is done to a folder, from which it tells what a disk may hold when the power goes: what was not
/// flushed may be there or not.
class ModelDisk {
public:
    using Content = std::map<std::string, QByteArray>; // by path; the hidden ones as well

    explicit ModelDisk(const QString& folder) {
        QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            start_[path.toStdString()] = static_cast<int>(files_.size());
            files_.push_back({bytesAt(path), false});
        }
        now_ = start_;
    }
    FileCalls calls(FileCalls calls);
    std::size_t moments() const { return log_.size() + 1; }
    /// Hands each state after the first `moment` steps to `see`; how many there were.
    template <class See> int64_t states(std::size_t moment, SeededRandom& random, See see) const;

private:
    enum class Step { write, flush, name, move, remove, folder, flushFolder };
    struct Entry {
        Step step;
        int file = -1;
        std::string path = {}, from = {};
        std::size_t offset = 0;
        QByteArray bytes = {};
    };
    struct File {
        QByteArray atStart;
        bool isNameless;
    };
    struct Open {
        int file; // -1: a folder
        std::string folder;
        std::shared_ptr<std::size_t> offset = std::make_shared<std::size_t>(0);
    };
    using Names = std::map<std::string, int>;

    static std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }
    static bool isOfNames(const Entry& entry) {
        return entry.step == Step::name || entry.step == Step::move || entry.step == Step::remove ||
               entry.step == Step::folder;
    }
    static void apply(const Entry& entry, Names& names) {
        if (entry.step == Step::move)
            std::erase_if(names, [&](auto& name) {
                return name == std::pair<const std::string, int>(entry.from, entry.file);
            });
        if (entry.step == Step::name || entry.step == Step::move) names[entry.path] = entry.file;
        if (entry.step == Step::remove) names.erase(entry.path);
    }
    Names namesAt(std::size_t moment, const std::vector<std::size_t>& pending, uint64_t kept) const;
    std::vector<QByteArray> contentsOf(int file, std::size_t moment, SeededRandom& random) const;
    void add(Entry entry) {
        apply(entry, now_);
        log_.push_back(std::move(entry));
    }

    Names start_, now_;
    std::vector<File> files_;
    std::vector<Entry> log_;
    std::map<int, Open> open_;
    std::mutex mutex_;
};

inline FileCalls ModelDisk::calls(FileCalls calls) {
    FileCalls logged = calls;
    logged.open = [=, this](const char* path, int flags, mode_t mode) {
        const std::lock_guard guard(mutex_);
        const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
        const bool isThere = now_.contains(path);
        const int result = calls.open(path, flags, mode);
        if (result < 0) return result;
        std::string folder = path;
        if (folder.back() == '/') folder.pop_back();
        if (isNameless || (!isThere && (flags & O_CREAT))) {
            open_[result] = {static_cast<int>(files_.size()), {}};
            files_.push_back({{}, isNameless});
            if (!isNameless) add({Step::name, open_[result].file, path});
        } else {
            open_[result] = {isThere ? now_.at(path) : -1, folder};
        }
        return result;
    };
    logged.write = [=, this](int file, const void* bytes, std::size_t count) {
        const std::lock_guard guard(mutex_);
        const ssize_t result = calls.write(file, bytes, count);
        if (result <= 0) return result;
        const Open& open = open_.at(file);
        log_.push_back({Step::write,
                        open.file,
                        {},
                        {},
                        *open.offset,
                        QByteArray(static_cast<const char*>(bytes), result)});
        *open.offset += static_cast<std::size_t>(result);
        return result;
    };
    logged.fsync = [=, this](int file) {
        const std::lock_guard guard(mutex_);
        const Open& open = open_.at(file);
        log_.push_back({open.file < 0 ? Step::flushFolder : Step::flush, open.file, open.folder});
        return 0;
    };
    logged.dup = [=, this](int file) {
        const std::lock_guard guard(mutex_);
        const int result = calls.dup(file);
        if (result >= 0) open_[result] = Open(open_.at(file));
        return result;
    };
    const auto noted = [this](auto call, auto entry) {
        return [=, this](auto... arguments) {
            const std::lock_guard guard(mutex_);
            const int result = call(arguments...);
            if (result == 0) add(entry(arguments...));
            return result;
        };
    };
    logged.link = noted(calls.link, [this](int file, const char* path) {
        return Entry{Step::name, open_.at(file).file, path};
    });
    logged.rename = noted(calls.rename, [this](const char* from, const char* to) {
        return Entry{Step::move, now_.at(from), to, from};
    });
    logged.unlink = noted(calls.unlink, [](const char* path) { return Entry{Step::remove, -1, path}; });
    logged.mkdir = noted(calls.mkdir, [](const char* path, mode_t) { return Entry{Step::folder, -1, path}; });
    return logged;
}

inline ModelDisk::Names ModelDisk::namesAt(std::size_t moment, const std::vector<std::size_t>& pending,
                                           uint64_t kept) const {
    Names names = start_;
    std::set<std::string> lost; // folders
    for (std::size_t i = 0, next = 0; i < moment; ++i) {
        if (!isOfNames(log_[i])) continue;
        bool isKept = true;
        if (next < pending.size() && pending[next] == i) isKept = kept >> next++ & 1;
        if (isKept)
            apply(log_[i], names);
        else if (log_[i].step == Step::folder)
            lost.insert(log_[i].path + '/');
    }
    for (const std::string& folder : lost)
        std::erase_if(names, [&](auto& name) { return name.first.starts_with(folder); });
    return names;
}

inline std::vector<QByteArray> ModelDisk::contentsOf(int file, std::size_t moment,
                                                     SeededRandom& random) const {
    QByteArray flushed = files_[static_cast<std::size_t>(file)].atStart, written = flushed;
    std::size_t lastFlush = 0, lastName = 0;
    for (std::size_t i = 0; i < moment; ++i) {
        const Entry& entry = log_[i];
        if (entry.file != file) continue;
        if (entry.step == Step::write) {
            written.resize(std::max<qsizetype>(written.size(),
                                               static_cast<qsizetype>(entry.offset) + entry.bytes.size()),
                           '\0');
            written.replace(static_cast<qsizetype>(entry.offset), entry.bytes.size(), entry.bytes);
        }
        if (entry.step == Step::flush) flushed = written, lastFlush = i;
        if (entry.step == Step::name) lastName = i;
    }
    std::vector<QByteArray> contents{written};
    if (files_[static_cast<std::size_t>(file)].isNameless && lastName > lastFlush) contents.emplace_back();
    if (written == flushed) return contents;
    for (std::size_t chance = 0; chance < kMostVariants; ++chance) {
        QByteArray mixed = random.next() % 2 ? written : flushed;
        for (qsizetype at = 0; at < mixed.size(); at += kPage) {
            const qsizetype size = std::min<qsizetype>(kPage, mixed.size() - at);
            const uint64_t kind = random.next() % 3;
            const QByteArray page = kind == 0 ? QByteArray() : (kind == 1 ? flushed : written).mid(at, size);
            mixed.replace(at, size, page.leftJustified(size, '\0'));
        }
        contents.push_back(mixed);
    }
    contents.push_back(flushed);
    return contents;
}

template <class See> int64_t ModelDisk::states(std::size_t moment, SeededRandom& random, See see) const {
    std::vector<std::size_t> pending;
    for (std::size_t i = 0; i < moment; ++i) {
        const auto isFlushed = [&](const Entry& later) {
            return later.step == Step::flushFolder && later.path == folderOf(log_[i].path);
        };
        const auto at = log_.begin() + static_cast<std::ptrdiff_t>(i);
        if (isOfNames(log_[i]) &&
            std::none_of(at, log_.begin() + static_cast<std::ptrdiff_t>(moment), isFlushed))
            pending.push_back(i);
    }
    const bool isEverySubset = pending.size() <= kMostPending;
    const uint64_t choices = isEverySubset ? 1ULL << pending.size() : pending.size() + 1;
    int64_t count = 0;
    for (uint64_t choice = 0; choice < choices; ++choice) {
        const Names names = namesAt(moment, pending, isEverySubset ? choice : (1ULL << choice) - 1);
        std::map<std::string, std::vector<QByteArray>> contents;
        std::size_t variants = 1;
        for (const auto& [path, file] : names) {
            contents[path] = contentsOf(file, moment, random);
            variants = std::min(kMostVariants, variants * contents[path].size());
        }
        for (std::size_t variant = 0; variant < variants; ++variant, ++count) {
            Content content;
            std::size_t rest = variant;
            for (const auto& [path, several] : contents) {
                content[path] = several[rest % several.size()];
                rest /= several.size();
            }
            see(content);
        }
    }
    return count;
}

} // namespace qirn::test

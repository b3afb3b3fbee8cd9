#pragma once
#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/shared/UserFile.h"
#include "platform/Bytes.h"

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <utility>

#include <QObject>

namespace qirn {

/// What is kept in one file of the user's own, held in memory, while other programs may keep theirs in the same file. A
/// write is done in the background and merges: what has changed here since the last one goes into the file, and what
/// others have changed there comes into memory. A failure is not reported: the next write tries again. Main thread only.
///
/// `Format` has the type `Content` and `empty()`, `decode` (nothing for what cannot be read), `encode` and
/// `merged(base, ours, theirs)` (see ThreeWayMerge.h).
template <class Format> class SharedFile {
public:
    using Content = typename Format::Content;

    explicit SharedFile(QString path)
        : path_(std::move(path)) {} ///< An empty one: nothing is read or written.
    ~SharedFile() {
        flush();
        if (done_.valid()) done_.wait(); // for the last it does with the context
    }
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    /// False where there is no file. One that cannot be read counts as empty.
    bool load() {
        return UserFile(path_).load([this](std::span<const uint8_t> bytes) {
            auto content = Format::decode(bytes);
            if (content) base_ = content_ = std::move(*content);
            return content.has_value();
        });
    }

    const Content& operator*() const { return content_; }
    const Content* operator->() const { return &content_; }
    Content& edit() { return content_; } ///< To be followed by `write`, sooner or later.

    /// Begins to write what has changed; while a write is under way, the next one begins behind it.
    void write() {
        take();
        isWanted_ = job_ != nullptr;
        if (job_ || path_.isEmpty() || content_ == base_) return;
        const auto job = std::make_shared<Job>(path_, base_, content_);
        done_ = BackgroundQueue::ownFiles().run([job, this] {
            job->run();
            QMetaObject::invokeMethod(
                &context_, [this] { contained([this] { take(); }); }, Qt::QueuedConnection);
        });
        job_ = job; // not before: one that could not be handed over never ends
    }
    /// Writes what has changed and waits for it.
    void flush() {
        const auto finish = [this] {
            while (job_) {
                BackgroundQueue::ownFiles().finish();
                take();
            }
        };
        finish();
        write();
        finish();
    }

    std::function<void()> onArrival; ///< Others' changes have come into memory, between two events.

private:
    struct Job {
        Job(QString file, Content from, Content to)
            : path(std::move(file)),
              base(std::move(from)),
              ours(std::move(to)) {}
        void run() {
            try {
                Content result = Format::empty();
                const auto next = [&](const std::optional<QByteArray>& there) -> std::optional<QByteArray> {
                    // Who removes the file does not take out what is in it.
                    auto theirs = there ? Format::decode(bytesOf(*there)) : std::optional(base);
                    if (!theirs) return std::nullopt;
                    result = Format::merged(base, ours, std::move(*theirs));
                    return Format::encode(result);
                };
                if (UserFile(path).replace(next)) merged = std::move(result);
            } catch (const std::exception&) {
                // Out of memory, in nearly all cases.
            }
            isOver = true;
        }

        const QString path;
        const Content base, ours;
        std::optional<Content> merged; // what is in the file by now; nothing when it was not written
        std::atomic<bool> isOver = false;
    };

    /// Takes the result of a write that is over.
    void take() {
        if (!job_ || !job_->isOver) return;
        const std::shared_ptr<Job> job = std::exchange(job_, nullptr);
        bool isNew = false;
        if (job->merged) {
            // What was changed here during the write is still to be written.
            Content content = Format::merged(job->ours, content_, *job->merged);
            isNew = content != content_;
            content_ = std::move(content);
            base_ = std::move(*job->merged);
        }
        if (std::exchange(isWanted_, false)) write();
        if (isNew && onArrival) onArrival();
    }

    const QString path_;
    Content base_ = Format::empty(); // what is in the file as far as is known
    Content content_ = base_;
    std::shared_ptr<Job> job_; // the write under way; null: none
    std::shared_future<void> done_;
    bool isWanted_ = false; // another write, behind that one
    QObject context_;
};

} // namespace qirn

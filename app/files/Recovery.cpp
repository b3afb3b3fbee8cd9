#include "app/files/Recovery.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/files/CopyFiles.h"
#include "app/files/CopyLock.h"
#include "app/files/SalvagedPicture.h"
#include "formats/native/PaintFile.h"
#include "formats/native/StoredPreview.h"
#include "platform/Bytes.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"
#include "platform/files/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QThread>

namespace qirn {

namespace {

const QString kCopy = u'.' + QLatin1String(PaintFile::fileExtension);
const QString kRecord = QStringLiteral(".json");
const QString kLock = QStringLiteral(".lock");

QString idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

QString pathFor(const QUuid& id, const QString& ending) {
    return QDir(AppFolders::autosave()).filePath(idText(id) + ending);
}

/// The id in a name of this ending; null where it is no such name.
QUuid idIn(const QString& name, const QString& ending) {
    if (!name.endsWith(ending)) return {};
    const QString base = name.chopped(ending.size());
    const QUuid id = QUuid::fromString(base);
    return base.toUpper() == idText(id) ? id : QUuid(); // no braces and the like
}

/// A copy whose record was lost.
Recovery::Info madeUpInfo(const QString& path) {
    const QDateTime changed = QFileInfo(path).lastModified();
    return {.name = QCoreApplication::translate("Recovery", "Recovered picture"),
            .originalPath = {},
            .originalStamp = {},
            .date = changed.isValid() ? changed : QDateTime::currentDateTime()};
}

Recovery::Info infoOf(const DocSession& session, const QDateTime& date, const TileGrid& grid,
                      std::size_t layers) {
    Recovery::Info info{.name = session.name,
                        .originalPath = {},
                        .originalStamp = {},
                        .date = date,
                        .width = grid.width,
                        .height = grid.height,
                        .layers = static_cast<int64_t>(layers)};
    const QString path = session.fileURL.isEmpty() ? session.originalPath : session.fileURL.toLocalFile();
    if (!path.isEmpty()) info.originalPath = path;
    return info;
}

/// That of the copy on disk.
Recovery::Info infoOf(const DocSession& session) {
    const PaintDocument& doc = session.doc();
    return infoOf(session, session.lastAutosave, doc.grid(), doc.layers().size());
}

/// Hands over a copy of the last commit.
void handOver(DocSession& session, std::function<void()> ended) {
    SafetyCopy& copy = session.copy;
    copy.taken = std::chrono::steady_clock::now();
    DocumentSnapshot picture = snapshotOfLastCommit(session.doc());
    const QDateTime date = QDateTime::currentDateTime();
    const Recovery::Info info = infoOf(session, date, picture.grid, picture.layers.size());
    if (!copy.files) copy.files = std::make_shared<CopyFiles>(session.id);
    copy.files->saveEnded();
    auto job = [files = copy.files, info, picture = std::move(picture)] {
        try {
            files->write(picture, info);
        } catch (const std::exception& error) {
            qWarning("Qirn Paint autosave failed: %s", error.what());
            throw;
        }
    };
    copy.underWay.reserve(copy.underWay.size() + 1);
    copy.underWay.push_back(
        {session.doc().changeCount(), date,
         BackgroundQueue::files().runInstead(session.id, std::move(job), std::move(ended))});
}

void noteFailure(SafetyCopy& copy, const std::exception& error) {
    ++copy.failures;
    copy.reason = failureText(error);
}

enum class Kind { file, nothing, other }; // a link that somebody planted, or what cannot be seen
Kind kindAt(const QString& path) {
    struct stat facts {};
    if (FileCalls::inUse().lstat(bytesOfPath(path).constData(), &facts) == 0)
        return S_ISREG(facts.st_mode) ? Kind::file : Kind::other;
    return errno == ENOENT ? Kind::nothing : Kind::other;
}

/// Removes a record without a copy, unless a program may be about to write that.
void sweepRecord(const QUuid& id) {
    if (kindAt(Recovery::fileURL(id)) != Kind::nothing) return;
    const std::shared_ptr<CopyLock> lock = CopyLock::take(Recovery::lockURL(id));
    if (lock && lock->isHeld() && kindAt(Recovery::fileURL(id)) == Kind::nothing)
        FileCalls::inUse().unlink(bytesOfPath(Recovery::infoURL(id)).constData());
}

QString recoveredName(const Recovery::Info& info) {
    const QString mark = QCoreApplication::translate("Recovery", " (recovered)");
    return info.name.endsWith(mark) ? info.name : info.name + mark;
}

/// The copy goes on being that of the recovered picture.
SessionRef owning(SessionRef session, const Recovery::Item& item) {
    session->copy.files = std::make_shared<CopyFiles>(item.id, item.lock);
    session->autosavedChange = session->doc().changeCount();
    session->lastAutosave = item.info.date;
    session->originalPath = item.info.originalPath.value_or(QString());
    session->moveToThread(QCoreApplication::instance()->thread());
    return session;
}

} // namespace

QImage Recovery::Item::thumbnail() const {
    try {
        const auto preview = storedPreview(file);
        return preview ? preview->makeImage() : QImage();
    } catch (const ReadError&) {
        return {};
    }
}

bool Recovery::Item::mayBeOpenElsewhere() const {
    return !lock->isHeld();
}

QString Recovery::fileURL(const QUuid& id) {
    return pathFor(id, kCopy);
}
QString Recovery::infoURL(const QUuid& id) {
    return pathFor(id, kRecord);
}
QString Recovery::lockURL(const QUuid& id) {
    return pathFor(id, kLock);
}

void Recovery::write(DocSession& session, Synchronously synchronously, std::function<void()> ended) {
    try {
        handOver(session, std::move(ended));
    } catch (const std::exception& error) { // of memory, or of threads
        noteFailure(session.copy, error);
    }
    if (synchronously == Synchronously::no) return;
    BackgroundQueue::files().finish(session.id);
    settle(session);
}

bool Recovery::settle(DocSession& session) {
    SafetyCopy& copy = session.copy;
    const auto isOver = [](const SafetyCopy::UnderWay& one) {
        return one.ended.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    bool any = false;
    // One after the other, as they are written.
    for (auto one = copy.underWay.begin(); one != copy.underWay.end() && isOver(*one);
         one = copy.underWay.erase(one)) {
        try {
            one->ended.get();
            session.autosavedChange = one->change;
            session.lastAutosave = one->date;
            copy.failures = 0;
            copy.isTold = false;
        } catch (const std::future_error&) {
            continue; // a later one is written in its place
        } catch (const std::exception& error) {
            noteFailure(copy, error);
        }
        any = true;
    }
    return any;
}

bool Recovery::isUnderWay(const DocSession& session) {
    return std::ranges::any_of(session.copy.underWay, [&](const SafetyCopy::UnderWay& one) {
        return one.change == session.doc().changeCount();
    });
}

bool Recovery::isUpToDate(const DocSession& session) {
    return session.lastAutosave.isValid() && session.autosavedChange == session.doc().changeCount();
}

void Recovery::discard(DocSession& session) {
    SafetyCopy& copy = session.copy;
    session.lastAutosave = {};
    const std::shared_ptr<CopyFiles> files = std::exchange(copy, {}).files;
    if (!files) return;
    copy.files = files; // its lock goes with the job, and is taken again for the next copy
    copy.taken = std::chrono::steady_clock::now();
    BackgroundQueue::files().runInstead(session.id, [files] { files->remove(); });
}

void Recovery::moveToTrash(DocSession& session) {
    BackgroundQueue& queue = BackgroundQueue::files();
    queue.finish(session.id);
    settle(session);
    // It may have been removed by somebody, while the work is still here.
    if (!isUpToDate(session) || !isThere(fileURL(session.id))) {
        handOver(session, {});
        const std::shared_future<void> written = session.copy.underWay.back().ended;
        queue.finish(session.id);
        settle(session);
        written.get();
    }
    const auto moved = queue.run(
        [files = session.copy.files, info = infoOf(session)] { files->moveToTrash(info); }, session.id);
    queue.finish(session.id);
    moved.get();
    session.lastAutosave = {};
}

void Recovery::moveToTrash(const Item& item) {
    CopyFiles(item.id, item.lock).moveToTrash(item.info);
}

std::vector<Recovery::Item> Recovery::pending(const std::set<QUuid>& excluding) {
    const QString folder = AppFolders::autosave();
    std::vector<std::string> names;
    if (FileCalls::inUse().list(bytesOfPath(folder).constData(), names) < 0) return {};
    std::ranges::sort(names);
    std::vector<Item> items;
    for (const std::string& bytes : names) {
        const QString name = pathFromBytes(QByteArray::fromStdString(bytes));
        const QString path = QDir(folder).filePath(name);
        if (const QUuid id = idIn(name, kCopy); !id.isNull()) {
            if (excluding.contains(id) || kindAt(path) != Kind::file) continue;
            const std::shared_ptr<CopyLock> lock = CopyLock::take(lockURL(id));
            if (lock && kindAt(path) == Kind::file) // not open in another program, nor just saved there
                items.push_back({id, readRecord(infoURL(id)).value_or(madeUpInfo(path)), path, lock});
        } else if (const QUuid idOfRecord = idIn(name, kRecord); !idOfRecord.isNull()) {
            if (!excluding.contains(idOfRecord)) sweepRecord(idOfRecord);
        } else if (name.endsWith(kLock)) {
            CopyLock::take(path); // of a program that ended without a copy: releasing it removes its file
        }
    }
    for (const QString& own : {AppFolders::base(), folder}) sweepTemporaries(own);
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.info.date > b.info.date; });
    return items;
}

SessionRef Recovery::restore(const Item& item, const Progress& progress) {
    auto document = PaintFile::decode(bytesOf(readFile(item.file)), progress);
    return owning(std::make_shared<DocSession>(std::move(document), recoveredName(item.info), QUrl(), item.id,
                                               DocSession::Dirty::yes),
                  item);
}

SessionRef Recovery::restoreWhatCanBeRead(const Item& item, const Progress& progress) {
    return owning(salvagedPicture(item.file, recoveredName(item.info), item.id, progress), item);
}

} // namespace qirn

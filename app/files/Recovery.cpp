#include "app/files/Recovery.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/Trash.h"
#include "app/files/SalvagedPicture.h"
#include "formats/native/PaintFile.h"
#include "formats/native/StoredPreview.h"
#include "platform/Bytes.h"
#include "platform/Json.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"
#include "platform/files/TemporaryFile.h"

#include <algorithm>
#include <cerrno>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace qirn {

namespace {

QString idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

QString pathFor(const QUuid& id, const QString& extension) {
    return QDir(AppFolders::autosave()).filePath(idText(id) + u'.' + extension);
}

QString lockURL(const QUuid& id) {
    return pathFor(id, QStringLiteral("lock"));
}

OrderedJson infoToJson(const Recovery::Info& info) {
    OrderedJson json;
    json["name"] = info.name.toStdString();
    if (info.originalPath) json["originalPath"] = info.originalPath->toStdString();
    json["date"] = info.date.toUTC().toString(Qt::ISODate).toStdString();
    json["width"] = info.width;
    json["height"] = info.height;
    json["layers"] = info.layers;
    return json;
}

std::optional<Recovery::Info> infoFromFile(const QString& path) {
    try {
        const std::optional<Json> json = parseJson(bytesOf(readFile(path)));
        if (!json) return std::nullopt;
        Recovery::Info info;
        info.name = jsonText(jsonMember(*json, "name"));
        if (const Json* path_ = jsonOptionalMember(*json, "originalPath"))
            info.originalPath = jsonText(*path_);
        info.date = QDateTime::fromString(jsonText(jsonMember(*json, "date")), Qt::ISODate);
        info.width = jsonWhole(jsonMember(*json, "width"));
        info.height = jsonWhole(jsonMember(*json, "height"));
        info.layers = jsonWhole(jsonMember(*json, "layers"));
        if (!info.date.isValid()) return std::nullopt;
        return info;
    } catch (const ReadError&) {
        return std::nullopt;
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
}

/// A copy whose record was lost, as by a crash between the two writes.
Recovery::Info madeUpInfo(const QFileInfo& file) {
    const QDateTime changed = file.lastModified();
    return {QCoreApplication::translate("Recovery", "Recovered picture"),
            std::nullopt,
            changed.isValid() ? changed : QDateTime::currentDateTime(),
            0,
            0,
            0};
}

/// Everything that the background thread needs to write a copy.
struct CopyJob {
    DocumentSnapshot picture;
    Recovery::Info info;
    QString file, infoFile;
    std::shared_ptr<CopyLock> lock;

    void run() const {
        try {
            if (!lock) throw FileError(EBUSY); // another program has this copy
            writeOwnFile(file, bytesOf(PaintFile::encode(picture, PaintFile::kPreviewSide)),
                         UsersLinks::replaced);
            writeOwnFile(infoFile, bytesOf(QByteArray::fromStdString(jsonBytes(infoToJson(info)))),
                         UsersLinks::replaced);
        } catch (const std::exception& error) {
            qWarning("Qirn Paint autosave failed: %s", error.what());
            throw;
        }
    }
};

Recovery::Info infoOf(const DocSession& session, const TileGrid& grid, std::size_t layers) {
    Recovery::Info info{session.name, std::nullopt, session.lastAutosave,
                        grid.width,   grid.height,  static_cast<int64_t>(layers)};
    if (!session.fileURL.isEmpty()) info.originalPath = session.fileURL.toLocalFile();
    return info;
}

/// Of the document alone: its record means nothing to the user.
void trashCopy(const QUuid& id, const Recovery::Info& info) {
    const QString time = QLocale().toString(info.date.toLocalTime(), QStringLiteral("d MMM hh.mm"));
    const QString name =
        FileTypes::fileName(QCoreApplication::translate("Recovery", "%1 (autosaved %2)").arg(info.name, time),
                            QLatin1String(PaintFile::fileExtension));
    const QString folder = info.originalPath
                               ? QFileInfo(*info.originalPath).path()
                               : QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    moveToTrash(Recovery::fileURL(id), name, folder);
    QFile::remove(Recovery::infoURL(id));
}

QString recoveredName(const Recovery::Info& info) {
    return info.name + QCoreApplication::translate("Recovery", " (recovered)");
}

/// The copy goes on being that of the recovered picture.
void belongsTo(DocSession& session, const Recovery::Item& item) {
    std::promise<void> onDisk;
    onDisk.set_value();
    session.copy = onDisk.get_future().share();
    session.copyLock = item.lock;
    session.lastAutosave = item.info.date;
}

} // namespace

QImage Recovery::Item::thumbnail() const {
    try {
        return storedPreview(file).value_or(QImage());
    } catch (const ReadError&) {
        return {};
    }
}

QString Recovery::fileURL(const QUuid& id) {
    return pathFor(id, QLatin1String(PaintFile::fileExtension));
}
QString Recovery::infoURL(const QUuid& id) {
    return pathFor(id, QStringLiteral("json"));
}

void Recovery::write(DocSession& session, Synchronously synchronously) {
    DocumentSnapshot picture = snapshotOfLastCommit(session.doc());
    session.autosavedChange = session.doc().changeCount();
    session.lastAutosave = QDateTime::currentDateTime();
    if (!session.copyLock || !session.copyLock->isHeld())
        session.copyLock = CopyLock::take(lockURL(session.id));
    const Info info = infoOf(session, picture.grid, picture.layers.size());
    CopyJob job{std::move(picture), info, fileURL(session.id), infoURL(session.id), session.copyLock};
    session.copy = BackgroundQueue::files().run([job = std::move(job)] { job.run(); });
    if (synchronously == Synchronously::yes) BackgroundQueue::files().finish();
}

bool Recovery::isUpToDate(const DocSession& session) {
    if (!session.copy.valid() || session.autosavedChange != session.doc().changeCount()) return false;
    try {
        session.copy.get();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void Recovery::discard(const QUuid& id) {
    BackgroundQueue::files().finish();
    QFile::remove(fileURL(id));
    QFile::remove(infoURL(id));
}

void Recovery::moveToTrash(DocSession& session) {
    if (!isUpToDate(session)) {
        write(session, Synchronously::yes);
        session.copy.get();
    }
    const PaintDocument& doc = session.doc();
    trashCopy(session.id, infoOf(session, doc.grid(), doc.layers().size()));
}

void Recovery::moveToTrash(const Item& item) {
    trashCopy(item.id, item.info);
}

std::vector<Recovery::Item> Recovery::pending(const std::set<QUuid>& excluding) {
    std::vector<Item> items;
    const QDir folder(AppFolders::autosave());
    const QString pattern = QStringLiteral("*.") + QLatin1String(PaintFile::fileExtension);
    for (const QFileInfo& file : folder.entryInfoList({pattern}, QDir::Files)) {
        const QUuid id = QUuid::fromString(file.completeBaseName());
        const bool isCopy =
            !id.isNull() && file.completeBaseName().toUpper() == idText(id); // no braces and the like
        if (!isCopy || excluding.contains(id)) continue;
        const std::shared_ptr<CopyLock> lock = CopyLock::take(lockURL(id));
        if (!lock || !QFile::exists(file.filePath()))
            continue; // open in another program, or just saved there
        items.push_back({id, infoFromFile(infoURL(id)).value_or(madeUpInfo(file)), file.filePath(), lock});
    }
    // Locks of programs that ended without a copy: releasing them removes their files.
    for (const QFileInfo& lock : folder.entryInfoList({QStringLiteral("*.lock")}, QDir::Files | QDir::Hidden))
        CopyLock::take(lock.filePath());
    for (const QString& own : {AppFolders::base(), AppFolders::autosave()}) sweepTemporaries(own);
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.info.date > b.info.date; });
    return items;
}

SessionRef Recovery::restore(const Item& item) {
    auto document = PaintFile::decode(bytesOf(readFile(item.file)));
    const auto session = std::make_shared<DocSession>(std::move(document), recoveredName(item.info), QUrl(),
                                                      item.id, DocSession::Dirty::yes);
    belongsTo(*session, item);
    return session;
}

SessionRef Recovery::restoreWhatCanBeRead(const Item& item) {
    const SessionRef session = salvagedPicture(item.file, recoveredName(item.info), item.id, {});
    belongsTo(*session, item);
    return session;
}

} // namespace qirn

#include "Recovery.h"

#include "AppFolders.h"
#include "BackgroundQueue.h"
#include "Trash.h"
#include "formats/native/PaintFile.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/Json.h"
#include "platform/ReadFile.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace qirn {

namespace {

QString idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

QString pathFor(const QUuid& id, const QString& extension) {
    return QDir(AppFolders::autosave()).filePath(idText(id) + u'.' + extension);
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

void writeCopy(const DocumentSnapshot& snapshot, const QString& file, const Recovery::Info& info,
               const QString& infoFile) {
    try {
        writeAtomically(file, bytesOf(PaintFile::encode(snapshot, PaintFile::kPreviewSide)));
        writeAtomically(infoFile, bytesOf(QByteArray::fromStdString(jsonBytes(infoToJson(info)))));
    } catch (const std::exception& error) {
        qWarning("Qirn Paint autosave failed: %s", error.what());
    }
}

} // namespace

QImage Recovery::Item::thumbnail() const {
    try {
        return PaintFile::thumbnailOf(bytesOf(readFile(file))).value_or(QImage());
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
    DocumentSnapshot frozen = snapshot(session.doc());
    Info info{session.name,      std::nullopt,       QDateTime::currentDateTime(),
              frozen.grid.width, frozen.grid.height, static_cast<int64_t>(frozen.layers.size())};
    if (!session.fileURL.isEmpty()) info.originalPath = session.fileURL.toLocalFile();
    session.autosavedChange = session.doc().changeCount();
    session.lastAutosave = info.date;
    BackgroundQueue::run([frozen = std::move(frozen), info, file = fileURL(session.id),
                          infoFile = infoURL(session.id)] { writeCopy(frozen, file, info, infoFile); });
    if (synchronously == Synchronously::yes) BackgroundQueue::finish();
}

void Recovery::discard(const QUuid& id, MoveToTrash toTrash) {
    BackgroundQueue::finish();
    for (const QString& path : {fileURL(id), infoURL(id)}) {
        if (!QFile::exists(path)) continue;
        if (toTrash == MoveToTrash::yes)
            moveToTrash(path);
        else
            QFile::remove(path);
    }
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
        items.push_back({id, infoFromFile(infoURL(id)).value_or(madeUpInfo(file)), file.filePath()});
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.info.date > b.info.date; });
    return items;
}

SessionRef Recovery::restore(const Item& item) {
    auto document = PaintFile::decode(bytesOf(readFile(item.file)));
    return std::make_shared<DocSession>(
        std::move(document), item.info.name + QCoreApplication::translate("Recovery", " (recovered)"), QUrl(),
        item.id, DocSession::Dirty::yes);
}

} // namespace qirn

#include "app/model/PictureFiles.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Failures.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/Store.h"
#include "app/desktop/Trash.h"
#include "app/files/CopyFiles.h"
#include "app/files/LongTask.h"
#include "app/files/PictureOnDisk.h"
#include "app/files/Recovery.h"
#include "app/files/SalvagedPicture.h"
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Safety.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FilePath.h"

#include <algorithm>

#include <QFileInfo>
#include <QUrl>

namespace qirn {

namespace {

constexpr double kEncoded = 0.8; // of the work of saving, about
const QString kRecentFilesKey = QStringLiteral("qirn.pt.recentFiles");
constexpr qsizetype kRecentFiles = 10;
constexpr std::size_t kReasonsShown = 10; // in one message

QString extension() {
    return QLatin1String(PaintFile::fileExtension);
}

/// As stored: some of the files may no longer exist.
QStringList storedRecentFiles(const Store& store) {
    QStringList paths;
    const Json* list = store.json(kRecentFilesKey);
    if (!list || !list->is_array()) return paths;
    for (const Json& path : *list)
        if (path.is_string()) {
            const QString text = QString::fromStdString(path.get<std::string>());
            paths << pathOfAddress(QUrl(text)).value_or(text);
        }
    return paths;
}

} // namespace

void PictureFiles::openPanel() {
    open(model_.desktop().openFiles(tr("Open"), FileTypes::open(), Desktop::Several::yes));
}

void PictureFiles::open(const QString& path) {
    open(QStringList{path});
}

void PictureFiles::open(const QStringList& paths) {
    std::vector<Refusal> refusals;
    try {
        for (const QString& path : paths)
            if (const auto refusal = whyNotOpened(path)) refusals.push_back(*refusal);
    } catch (const Cancelled&) {
        // The rest are not wanted either.
    }
    if (refusals.empty() || !tellsOf(refusals)) return;
    for (const Refusal& refusal : refusals)
        if (refusal.canBeSalvaged) openWhatCanBeRead(refusal.path);
}

bool PictureFiles::tellsOf(const std::vector<Refusal>& refusals) {
    const auto name = [](const Refusal& refusal) { return QFileInfo(refusal.path).fileName(); };
    QString title = tr("Couldn't open %1").arg(name(refusals.front()));
    QString text = refusals.front().reason;
    if (refusals.size() > 1) {
        QStringList lines;
        for (std::size_t i = 0; i < std::min(refusals.size(), kReasonsShown); ++i)
            lines << tr("%1: %2").arg(name(refusals[i]), refusals[i].reason);
        if (refusals.size() > kReasonsShown)
            lines << tr("And %Ln more.", nullptr, static_cast<int>(refusals.size() - kReasonsShown));
        title = tr("Couldn't open %Ln files", nullptr, static_cast<int>(refusals.size()));
        text = lines.join(u'\n');
    }
    if (std::ranges::any_of(refusals, &Refusal::canBeSalvaged))
        return model_.messages().offerWhatCanBeRead(title, text);
    model_.messages().alert(title, text);
    return false;
}

void PictureFiles::openWhatCanBeRead(const QString& path) {
    const QFileInfo info(path);
    SessionRef session;
    try {
        const auto read = [&](const Progress& progress) {
            session = salvagedPicture(path, info.completeBaseName(), QUuid::createUuid(), progress);
        };
        if (!model_.longTask().run(tr("Opening %1…").arg(info.fileName()), read)) return;
    } catch (const std::exception& error) {
        return model_.messages().alert(tr("Couldn't open %1").arg(info.fileName()), failureText(error));
    }
    add(session, info.absoluteFilePath());
}

void PictureFiles::add(const std::shared_ptr<DocSession>& session, const QString& path) {
    session->atMostFullSize = true;
    model_.pictures().add(session);
    if (!session->remark.isEmpty()) model_.messages().flash(session->remark);
    if (!isInTrash(path)) noteRecentFile(path); // where the next save would be proposed, too
}

std::optional<PictureFiles::Refusal> PictureFiles::whyNotOpened(const QString& path) {
    if (DocSession* session = model_.pictures().sessionOf(path)) {
        model_.pictures().select(*session);
        return std::nullopt;
    }
    const QFileInfo info(path);
    ReadPicture picture;
    try {
        const auto read = [&](const Progress& progress) { picture = readPicture(path, progress); };
        if (!model_.longTask().run(tr("Opening %1…").arg(info.fileName()), read)) throw Cancelled();
    } catch (const std::exception& error) {
        return Refusal{path, failureText(error), canBeSalvaged(error)};
    }
    const bool native = FileTypes::isNative(path) && picture.isDocument;
    const QString base = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    const QString name =
        native || info.suffix().isEmpty() ? base : tr("%1 (from %2)").arg(base, info.suffix().toUpper());
    // What is put back from the Trash must not meet an open picture, and what is emptied with it was kept nowhere else.
    const bool isTrashed = native && isInTrash(path);
    const QUrl url = native && !isTrashed ? QUrl::fromLocalFile(info.absoluteFilePath()) : QUrl();
    const auto session =
        std::make_shared<DocSession>(std::move(picture.document), name, url, QUuid::createUuid(),
                                     isTrashed ? DocSession::Dirty::yes : DocSession::Dirty::no);
    if (!url.isEmpty()) session->fileStamp = picture.stamp;
    session->remark = wordsOf(picture.remarks);
    add(session, info.absoluteFilePath());
    return std::nullopt;
}

std::optional<PictureFiles::Place> PictureFiles::placeToSave(const DocSession& session, SaveAs as) {
    if (as == SaveAs::yes || session.fileURL.isEmpty()) return Place::another;
    const QString path = session.fileURL.toLocalFile();
    const auto now = FileStamp::at(path); // nothing: it has vanished, and is written anew
    if (!now || !session.fileStamp || now == session.fileStamp) return Place::itsFile;
    constexpr int kOverwrite = 0, kSaveAs = 1, kCancel = 2;
    // Return does what loses nothing.
    const int answer = model_.desktop().ask(
        tr("\"%1\" was changed by another program.").arg(QFileInfo(path).fileName()),
        tr("It is not as you opened or saved it last. Overwriting it loses what the other program wrote."),
        {tr("Overwrite"), tr("Save As…"), tr("Cancel")}, kCancel, kSaveAs);
    if (answer == kCancel) return std::nullopt;
    return answer == kOverwrite ? Place::itsFile : Place::another;
}

bool PictureFiles::save(DocSession* session, SaveAs as) {
    if (!session) session = model_.current();
    if (!session) return false;
    if (session == model_.current()) model_.finishGesture();
    const auto wanted = placeToSave(*session, as);
    if (!wanted) return false;
    QString path = session->fileURL.toLocalFile();
    if (*wanted == Place::another) {
        const auto place = model_.desktop().saveFile(
            {tr("Save"),
             FileTypes::fileName(session->name, extension()),
             {FileTypes::native()},
             tr("Qirn Paint documents keep every layer. Use File → Export for PNG, JPEG, TIFF or PSD."),
             true,
             session->originalPath.isEmpty() ? QString() : QFileInfo(session->originalPath).path()});
        if (!place) return false;
        if (place->exportInstead) {
            model_.pictures().select(*session);
            model_.showSheet({PaintSheet::Kind::exportPicture});
            return false;
        }
        path = place->path;
        if (const DocSession* other = model_.pictures().sessionOf(path); other && other != session) {
            model_.messages().flash(tr("\"%1\" is open in another tab.").arg(other->name));
            return false;
        }
    }
    std::optional<FileStamp> stamp;
    const int64_t change = session->doc().changeCount();
    try {
        const auto save = [&, picture = snapshot(session->doc()),
                           copy = session->copy.files](const Progress& progress) {
            const QByteArray bytes =
                PaintFile::encode(picture, PaintFile::kPreviewSide, {}, progress.part(0, kEncoded));
            if (copy) copy->noteSaving(path);
            stamp = writeAtomically(path, bytesOf(bytes), progress.part(kEncoded, 1));
        };
        if (!model_.longTask().run(tr("Saving %1…").arg(QFileInfo(path).fileName()), save)) return false;
    } catch (const std::exception& error) {
        const auto* failure = dynamic_cast<const FileError*>(&error);
        if (failure && failure->isWritten() && path == session->fileURL.toLocalFile())
            session->fileStamp = FileStamp::at(path); // nobody else has changed it
        model_.messages().alert(tr("Couldn't save"),
                                failureText(error) + (model_.safety().isAutosaved(*session)
                                                          ? tr("\n\nYour work is still open and autosaved.")
                                                          : tr("\n\nYour work is still open.")));
        return false;
    }
    const QFileInfo info(path);
    session->fileURL = QUrl::fromLocalFile(info.absoluteFilePath());
    session->fileStamp = stamp;
    session->name = info.completeBaseName();
    session->originalPath.clear();
    session->remark.clear();
    session->savedChange = session->autosavedChange = change;
    Recovery::discard(*session);
    session->announceChange();
    model_.announce();
    noteRecentFile(info.absoluteFilePath());
    model_.messages().flash(tr("Saved %1").arg(info.fileName()));
    return true;
}

void PictureFiles::exportPicture(ExportFormat format, double quality, const PaintColor& background) {
    const DocSession* session = model_.current();
    if (!session) return;
    model_.finishGesture();
    const FileType type = FileTypes::exported(format);
    const auto place = model_.desktop().saveFile(
        {tr("Export"), FileTypes::fileName(session->name, type.extensions.front()), {type}});
    if (!place) return;
    try {
        const std::shared_ptr<PaintDocument> picture = session->doc().draft();
        const auto save = [&](const Progress& progress) {
            writeExported(*picture, place->path, format, quality, background, progress);
        };
        if (!model_.longTask().run(tr("Exporting %1…").arg(QFileInfo(place->path).fileName()), save)) return;
    } catch (const std::exception& error) {
        return model_.messages().alert(tr("Couldn't export"), failureText(error));
    }
    model_.desktop().noteUsedFile(place->path);
    const QString name = QFileInfo(place->path).fileName();
    const auto shownDifferently = rowOf(format).shownDifferently;
    const QString what = shownDifferently ? shownDifferently(session->doc()) : QString();
    model_.messages().flash(
        what.isEmpty() ? tr("Exported %1").arg(name)
                       : tr("Exported %1. Other programs may show differently: %2.").arg(name, what));
}

// --- Recent files

QStringList PictureFiles::recentFiles() const {
    QStringList there = storedRecentFiles(model_.store());
    there.removeIf([](const QString& path) { return !isThere(path); });
    return there;
}

void PictureFiles::noteRecentFile(const QString& path) {
    QStringList paths = storedRecentFiles(model_.store());
    paths.removeAll(path);
    paths.prepend(path);
    OrderedJson list = OrderedJson::array();
    for (const QString& file : paths.first(std::min<qsizetype>(paths.size(), kRecentFiles)))
        list.push_back(addressOfPath(file).toStdString());
    model_.store().set(kRecentFilesKey, list);
    model_.desktop().noteRecentFile(path);
    model_.desktop().noteUsedFile(path);
}

void PictureFiles::forgetRecentFiles() {
    model_.store().set(kRecentFilesKey, OrderedJson::array());
}

} // namespace qirn

#include "app/model/OpenPictures.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Failures.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/HostWords.h"
#include "app/desktop/Store.h"
#include "app/files/LongTask.h"
#include "app/files/Recovery.h"
#include "app/model/CanvasPort.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "platform/BlockPool.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

#include <algorithm>
#include <new>

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace qirn {

namespace {

constexpr int64_t kMostCanvasPixels = 900'000'000;
constexpr double kFileRead = 0.1, kEncoded = 0.8; // of the work of opening and of saving, about
const QString kRecentFilesKey = QStringLiteral("qirn.pt.recentFiles");
constexpr qsizetype kRecentFiles = 10;
constexpr qsizetype kReasonsShown = 10; // in one message
constexpr int kStarterWidth = 1920, kStarterHeight = 1080, kStarterDpi = 72;

QString extension() {
    return QLatin1String(PaintFile::fileExtension);
}

QString standardized(const QString& path) {
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : real;
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

struct ReadPicture : ImageImport::Imported {
    bool isDocument = false; ///< By its content: a save may take its place.
};

/// Throws ReadError, or the format layer's typed error.
ReadPicture readPicture(const QString& path, const Progress& progress) {
    const QByteArray bytes = readFile(path, kAnyLength, progress.part(0, kFileRead));
    const auto& magic = PaintFile::magic;
    const bool isDocument = bytesOf(bytes).size() >= magic.size() &&
                            std::equal(magic.begin(), magic.end(), bytesOf(bytes).begin());
    return {ImageImport::imported(bytesOf(bytes), progress.part(kFileRead, 1)), isDocument};
}

void write(const QString& path, const QByteArray& bytes, const Progress& progress) {
    writeAtomically(path, bytesOf(bytes), FileCalls::ofSystem(), progress);
}

} // namespace

DocSession* OpenPictures::current() const {
    const auto found = std::find_if(sessions_.begin(), sessions_.end(),
                                    [&](const SessionRef& s) { return s->id == currentID_; });
    if (found != sessions_.end()) return found->get();
    return sessions_.empty() ? nullptr : sessions_.front().get();
}

std::set<QUuid> OpenPictures::ids() const {
    std::set<QUuid> ids;
    for (const SessionRef& session : sessions_) ids.insert(session->id);
    return ids;
}

// --- New pictures and tabs

void OpenPictures::newDocument(int64_t width, int64_t height, double dpi,
                               std::optional<PaintColor> background, const QString& name) {
    if (width > 0 && height > 0 && width > kMostCanvasPixels / height) return;
    auto doc = std::make_unique<PaintDocument>(width, height, dpi, background);
    add(std::make_shared<DocSession>(std::move(doc), name.isEmpty() ? tr("Untitled") : name));
}

void OpenPictures::ensureDocument() {
    if (!sessions_.empty()) return;
    const auto paper = model_.prefs().newDocTransparent ? std::nullopt : std::optional(PaintColor::white());
    newDocument(kStarterWidth, kStarterHeight, kStarterDpi, paper, {});
}

bool OpenPictures::isUntouchedStarter(const DocSession& session) const {
    return session.fileURL.isEmpty() && !session.isDirty() && session.doc().undoDepth() == 0 &&
           session.name == tr("Untitled");
}

void OpenPictures::add(SessionRef session) {
    model_.finishGesture();
    session->doc().maxUndoSteps = model_.prefs().undoSteps;
    if (sessions_.size() == 1 && isUntouchedStarter(*sessions_.front())) {
        Recovery::discard(sessions_.front()->id);
        remove(*sessions_.front());
    }
    sessions_.push_back(session);
    currentID_ = session->id;
    model_.canvas().showSession(*session);
    model_.announce();
}

void OpenPictures::addRecovered(SessionRef session) {
    model_.finishGesture();
    const bool replaces = sessions_.size() == 1 && sessions_.front()->fileURL.isEmpty() &&
                          !sessions_.front()->isDirty() && sessions_.front()->doc().undoDepth() == 0;
    if (replaces) {
        Recovery::discard(sessions_.front()->id);
        remove(*sessions_.front());
    }
    add(std::move(session));
}

void OpenPictures::remove(DocSession& session) {
    model_.canvas().forgetSession(session);
    std::erase_if(sessions_, [&](const SessionRef& s) { return s.get() == &session; });
}

void OpenPictures::select(DocSession& session) {
    if (session.id == currentID_) return;
    model_.finishGesture();
    currentID_ = session.id;
    model_.canvas().showSession(session);
    model_.announce();
}

void OpenPictures::selectNeighbor(int step) {
    const auto count = std::ssize(sessions_);
    for (std::ptrdiff_t i = 0; i < count; ++i)
        if (sessions_[checkedSize(i)].get() == current())
            return select(*sessions_[checkedSize((i + step + count) % count)]);
}

// --- Open and save

DocSession* OpenPictures::sessionOf(const QString& path) const {
    const QString standard = standardized(path);
    for (const SessionRef& session : sessions_) {
        if (!session->fileURL.isEmpty() && standardized(session->fileURL.toLocalFile()) == standard)
            return session.get();
    }
    return nullptr;
}

void OpenPictures::openPanel() {
    open(model_.desktop().openFiles(tr("Open"), FileTypes::open(), Desktop::Several::yes));
}

void OpenPictures::open(const QString& path) {
    open(QStringList{path});
}

void OpenPictures::open(const QStringList& paths) {
    QStringList names, reasons;
    try {
        for (const QString& path : paths) {
            if (const auto reason = whyNotOpened(path)) {
                names << QFileInfo(path).fileName();
                reasons << *reason;
            }
        }
    } catch (const Cancelled&) {
        // The rest are not wanted either.
    }
    if (names.isEmpty()) return;
    if (names.size() == 1)
        return model_.messages().alert(tr("Couldn't open %1").arg(names.front()), reasons.front());
    QStringList lines;
    for (qsizetype i = 0; i < std::min(names.size(), kReasonsShown); ++i)
        lines << tr("%1: %2").arg(names[i], reasons[i]);
    if (names.size() > kReasonsShown) lines << tr("And %1 more.").arg(names.size() - kReasonsShown);
    model_.messages().alert(tr("Couldn't open %1 files").arg(names.size()), lines.join(u'\n'));
}

std::optional<QString> OpenPictures::whyNotOpened(const QString& path) {
    if (DocSession* session = sessionOf(path)) {
        select(*session);
        return std::nullopt;
    }
    const QFileInfo info(path);
    ReadPicture picture;
    try {
        const auto read = [&](const Progress& progress) { picture = readPicture(path, progress); };
        if (!model_.longTask().run(tr("Opening %1…").arg(info.fileName()), read)) throw Cancelled();
    } catch (const std::exception& error) {
        return failureText(error);
    }
    const bool native = FileTypes::isNative(path) && picture.isDocument;
    const QString base = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    const QString name =
        native || info.suffix().isEmpty() ? base : tr("%1 (from %2)").arg(base, info.suffix().toUpper());
    const auto session = std::make_shared<DocSession>(
        std::move(picture.document), name, native ? QUrl::fromLocalFile(info.absoluteFilePath()) : QUrl());
    session->atMostFullSize = true;
    session->remark = wordsOf(picture.remarks);
    add(session);
    if (!session->remark.isEmpty()) model_.messages().flash(session->remark);
    noteRecentFile(info.absoluteFilePath());
    return std::nullopt;
}

bool OpenPictures::save(DocSession* session, SaveAs as) {
    if (!session) session = current();
    if (!session) return false;
    if (session == current()) model_.finishGesture();
    QString path = session->fileURL.toLocalFile();
    if (as == SaveAs::yes || session->fileURL.isEmpty()) {
        const auto place = model_.desktop().saveFile(
            {tr("Save"),
             FileTypes::fileName(session->name, extension()),
             {FileTypes::native()},
             tr("Qirn Paint documents keep every layer. Use File → Export for PNG, JPEG, TIFF or PSD."),
             true});
        if (!place) return false;
        if (place->exportInstead) {
            select(*session);
            model_.showSheet({PaintSheet::Kind::exportPicture});
            return false;
        }
        path = place->path;
        if (const DocSession* other = sessionOf(path); other && other != session) {
            model_.messages().flash(tr("\"%1\" is open in another tab.").arg(other->name));
            return false;
        }
    }
    try {
        const auto save = [&, picture = snapshot(session->doc())](const Progress& progress) {
            const QByteArray bytes =
                PaintFile::encode(picture, PaintFile::kPreviewSide, {}, progress.part(0, kEncoded));
            write(path, bytes, progress.part(kEncoded, 1));
        };
        if (!model_.longTask().run(tr("Saving %1…").arg(QFileInfo(path).fileName()), save)) return false;
    } catch (const std::exception& error) {
        model_.messages().alert(tr("Couldn't save"),
                                failureText(error) + tr("\n\nYour work is still open and autosaved."));
        return false;
    }
    const QFileInfo info(path);
    session->fileURL = QUrl::fromLocalFile(info.absoluteFilePath());
    session->name = info.completeBaseName();
    session->remark.clear();
    session->savedChange = session->autosavedChange = session->doc().changeCount();
    Recovery::discard(session->id);
    session->announceChange();
    model_.announce();
    noteRecentFile(info.absoluteFilePath());
    model_.messages().flash(tr("Saved %1").arg(info.fileName()));
    return true;
}

void OpenPictures::exportPicture(ExportFormat format, double jpegQuality, const PaintColor& jpegBackground) {
    const DocSession* session = current();
    if (!session) return;
    model_.finishGesture();
    const FileType type = FileTypes::exported(format);
    const auto place = model_.desktop().saveFile(
        {tr("Export"), FileTypes::fileName(session->name, type.extensions.front()), {type}});
    if (!place) return;
    try {
        const std::shared_ptr<PaintDocument> picture = session->doc().draft();
        const auto save = [&](const Progress& progress) {
            const QByteArray bytes =
                ImageExport::data(*picture, format, jpegQuality, jpegBackground, progress.part(0, kEncoded));
            write(place->path, bytes, progress.part(kEncoded, 1));
        };
        if (!model_.longTask().run(tr("Exporting %1…").arg(QFileInfo(place->path).fileName()), save)) return;
    } catch (const std::exception& error) {
        return model_.messages().alert(tr("Couldn't export"), failureText(error));
    }
    model_.desktop().noteUsedFile(place->path);
    model_.messages().flash(tr("Exported %1").arg(QFileInfo(place->path).fileName()));
}

// --- Recent files

QStringList OpenPictures::recentFiles() const {
    QStringList there = storedRecentFiles(model_.store());
    there.removeIf([](const QString& path) { return !isThere(path); });
    return there;
}

void OpenPictures::noteRecentFile(const QString& path) {
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

void OpenPictures::forgetRecentFiles() {
    model_.store().set(kRecentFilesKey, OrderedJson::array());
}

// --- Close and quit

bool OpenPictures::close(DocSession& session) {
    const bool wasCurrent = current() == &session;
    if (wasCurrent) model_.finishGesture();
    if (!session.isDirty()) {
        Recovery::discard(session.id);
    } else {
        const int answer =
            model_.desktop().ask(tr("Save changes to \"%1\"?").arg(session.name),
                                 tr("If you don't save, your changes are moved to the Trash as an "
                                    "autosave copy (you can still get them "
                                    "back from the Trash)."),
                                 {tr("Save…"), tr("Cancel"), tr("Don't Save")}, 1);
        if (answer == 1) return false;
        if (answer == 0 && !save(&session, SaveAs::no)) return false;
        if (answer == 2 && !leaveInTrash(session)) return false;
    }
    remove(session);
    BlockPool::trim();
    if (wasCurrent) {
        currentID_ = sessions_.empty() ? QUuid() : sessions_.back()->id;
        ensureDocument();
        model_.canvas().showSession(*current());
    }
    model_.announce();
    return true;
}

bool OpenPictures::leaveInTrash(DocSession& session) {
    QString reason;
    try {
        Recovery::moveToTrash(session);
        return true;
    } catch (const DescribedError& error) {
        reason = error.description();
    } catch (const std::bad_alloc&) {
        reason = tr("There is not enough memory.");
    }
    if (model_.desktop().ask(tr("Close \"%1\" without a copy?").arg(session.name), reason,
                             {tr("Cancel"), tr("Close")}, 0) == 0)
        return false;
    Recovery::discard(session.id);
    return true;
}

void OpenPictures::closeCurrent() {
    if (DocSession* session = current()) close(*session);
}

bool OpenPictures::shouldQuit() {
    model_.closeSheet();
    model_.finishGesture();
    const std::vector<SessionRef> open = sessions_;
    QStringList closed;
    for (const SessionRef& session : open) {
        if (!session->isDirty()) continue;
        select(*session);
        const auto said = model_.messages().hud();
        if (!close(*session)) {
            if (!closed.isEmpty() && model_.messages().hud() == said) // and not why it could not be saved
                model_.messages().flash(tr("Closed: %1").arg(closed.join(QStringLiteral(", "))));
            return false;
        }
        closed << session->name;
    }
    for (const SessionRef& session : sessions_) Recovery::discard(session->id);
    model_.saveState();
    model_.store().flush();
    return true;
}

} // namespace qirn

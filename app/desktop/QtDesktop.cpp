#include "app/desktop/QtDesktop.h"

#include "app/desktop/FilePanel.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/RecentFiles.h"
#include "kit/controls/MessageBox.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QStandardPaths>

namespace qirn {

namespace {

QString filterOf(const FileType& type) {
    QStringList patterns;
    for (const QString& extension : type.extensions) patterns << QStringLiteral("*.") + extension;
    return QStringLiteral("%1 (%2)").arg(type.description, patterns.join(u' '));
}

QString filtersOf(const QList<FileType>& types) {
    QStringList filters;
    for (const FileType& type : types) filters << filterOf(type);
    return filters.join(QStringLiteral(";;"));
}

/// The filter for all types first, and one for every file last: files are told apart by content.
QString filtersToOpen(const QList<FileType>& types) {
    QStringList all;
    for (const FileType& type : types) all << type.extensions;
    return QStringList{filterOf({QCoreApplication::translate("qirn::QtDesktop", "All of these"), all}),
                       filtersOf(types), QCoreApplication::translate("qirn::QtDesktop", "All files (*)")}
        .join(QStringLiteral(";;"));
}

QString startFolder(const QString& wanted, const QString& last) {
    for (const QString& folder :
         {wanted, last, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)})
        if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QDir::homePath();
}

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::QtDesktop", text);
}

} // namespace

std::optional<SavePlace> QtDesktop::saveFile(const SaveQuestion& question) {
    FilePanel panel(question.title, question.message, startFolder(question.folder, folder_),
                    filtersOf(question.types));
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.selectFile(question.proposedName);
    while (panel.exec() == QDialog::Accepted && !panel.selectedFiles().isEmpty()) {
        const QString typed = panel.selectedFiles().constFirst();
        const auto place = placeFor(typed, question);
        if (!place) continue;
        // A panel of the desktop's own has asked about the name as it was typed.
        const bool isAsked = place->exportInstead || (place->path == typed && !panel.isOurs());
        if (isAsked || !QFileInfo::exists(place->path) || mayReplace(place->path)) return place;
    }
    return std::nullopt;
}

std::optional<SavePlace> QtDesktop::placeFor(const QString& typed, const SaveQuestion& question) {
    if (question.types.isEmpty()) return SavePlace{typed};
    const FileType& type = question.types.front();
    if (!FileTypes::isOtherPicture(typed, type)) return SavePlace{FileTypes::withExtension(typed, type)};
    const QFileInfo info(typed);
    const QString mended = info.dir().filePath(FileTypes::withExtension(info.completeBaseName(), type));
    QStringList buttons{tr("Save as %1").arg(QFileInfo(mended).fileName())};
    if (question.offersExport) buttons << tr("Export…");
    buttons << tr("Cancel");
    const auto cancel = static_cast<int>(buttons.size()) - 1;
    const int answer = ask(tr("\"%1\" ends like another kind of file.").arg(info.fileName()),
                           question.message, buttons, cancel);
    if (answer == cancel) return std::nullopt;
    return answer == 0 ? SavePlace{mended} : SavePlace{{}, true};
}

bool QtDesktop::mayReplace(const QString& path) {
    return ask(tr("Replace \"%1\"?").arg(QFileInfo(path).fileName()),
               tr("A file of this name is there already."), {tr("Replace"), tr("Cancel")}, 1) == 0;
}

QStringList QtDesktop::openFiles(const QString& title, const QList<FileType>& types, Several several) {
    FilePanel panel(title, {}, startFolder({}, folder_), filtersToOpen(types));
    panel.setFileMode(several == Several::yes ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    panel.showPreviews();
    return panel.exec() == QDialog::Accepted ? panel.selectedFiles() : QStringList();
}

void QtDesktop::noteUsedFile(const QString& path) {
    folder_ = QFileInfo(path).absolutePath();
}

const QMimeData& QtDesktop::clipboard() {
    static const QMimeData kNothing;
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    return content ? *content : kNothing;
}

void QtDesktop::setClipboard(std::unique_ptr<QMimeData> content) {
    QGuiApplication::clipboard()->setMimeData(content.release()); // takes it
}

int QtDesktop::ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton,
                   int defaultButton) {
    MessageBox box(title, text, buttons, cancelButton, defaultButton, QApplication::activeWindow());
    box.setWindowTitle(QApplication::applicationDisplayName());
    return box.ask();
}

void QtDesktop::beep() {
    QApplication::beep();
}

void QtDesktop::noteRecentFile(const QString& path) {
    qirn::noteRecentFile(path);
}

} // namespace qirn

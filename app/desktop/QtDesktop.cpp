#include "app/desktop/QtDesktop.h"

#include "app/desktop/FileTypes.h"
#include "app/desktop/RecentFiles.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
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

QString startFolder(const QString& last) {
    if (!last.isEmpty() && QFileInfo(last).isDir()) return last;
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

} // namespace

std::optional<QString> QtDesktop::saveFile(const QString& proposedName, const QList<FileType>& types,
                                           const QString& message) {
    QFileDialog dialog(QApplication::activeWindow(), message, startFolder(folder_), filtersOf(types));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(proposedName);
    if (!types.isEmpty() && !types[0].extensions.isEmpty()) dialog.setDefaultSuffix(types[0].extensions[0]);
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const QString chosen = dialog.selectedFiles().constFirst();
        const QString path = types.isEmpty() ? chosen : FileTypes::withExtension(chosen, types[0]);
        // The panel has asked about the name as it was typed.
        if (path == chosen || !QFileInfo::exists(path) || mayReplace(path)) {
            folder_ = QFileInfo(path).absolutePath();
            return path;
        }
    }
    return std::nullopt;
}

bool QtDesktop::mayReplace(const QString& path) {
    const QString title =
        QCoreApplication::translate("qirn::QtDesktop", "Replace \"%1\"?").arg(QFileInfo(path).fileName());
    const QString text =
        QCoreApplication::translate("qirn::QtDesktop", "A file of this name is there already.");
    return ask(title, text,
               {QCoreApplication::translate("qirn::QtDesktop", "Replace"),
                QCoreApplication::translate("qirn::QtDesktop", "Cancel")},
               1) == 0;
}

QStringList QtDesktop::openFiles(const QList<FileType>& types, Several several) {
    QFileDialog dialog(QApplication::activeWindow(), {}, startFolder(folder_), filtersToOpen(types));
    dialog.setFileMode(several == Several::yes ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted) return {};
    const QStringList paths = dialog.selectedFiles();
    if (!paths.isEmpty()) folder_ = QFileInfo(paths.constFirst()).absolutePath();
    return paths;
}

const QMimeData& QtDesktop::clipboard() {
    static const QMimeData kNothing;
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    return content ? *content : kNothing;
}

void QtDesktop::setClipboard(std::unique_ptr<QMimeData> content) {
    QGuiApplication::clipboard()->setMimeData(content.release()); // takes it
}

int QtDesktop::ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton) {
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setText(QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()));
    box.setInformativeText(text);
    box.setTextFormat(Qt::RichText);
    QList<QPushButton*> made;
    for (const QString& label : buttons) {
        const bool cancels = made.size() == cancelButton;
        const auto role = cancels          ? QMessageBox::RejectRole
                          : made.isEmpty() ? QMessageBox::AcceptRole
                                           : QMessageBox::DestructiveRole;
        made << box.addButton(label, role);
        if (cancels) box.setEscapeButton(made.last());
    }
    box.setDefaultButton(made.constFirst());
    box.exec();
    const qsizetype pressed = made.indexOf(qobject_cast<QPushButton*>(box.clickedButton()));
    return static_cast<int>(pressed < 0 ? cancelButton : pressed);
}

void QtDesktop::beep() {
    QApplication::beep();
}

void QtDesktop::noteRecentFile(const QString& path) {
    qirn::noteRecentFile(path);
}

} // namespace qirn

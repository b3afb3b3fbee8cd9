#include "QtDesktop.h"

#include "HostWords.h"
#include "RecentFiles.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
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
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    const QString path = dialog.selectedFiles().constFirst();
    folder_ = QFileInfo(path).absolutePath();
    return path;
}

QStringList QtDesktop::openFiles(const QList<FileType>& types) {
    const QStringList paths = QFileDialog::getOpenFileNames(QApplication::activeWindow(), {},
                                                            startFolder(folder_), filtersOf(types));
    if (!paths.isEmpty()) folder_ = QFileInfo(paths.constFirst()).absolutePath();
    return paths;
}

int QtDesktop::ask(const QString& title, const QString& text, const QStringList& buttons, int cancelButton) {
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setText(QStringLiteral("<b>%1</b>").arg(hostWords(title).toHtmlEscaped()));
    box.setInformativeText(hostWords(text));
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

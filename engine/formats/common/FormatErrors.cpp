#include "formats/common/FormatErrors.h"

#include <QCoreApplication>
#include <QLocale>

namespace qirn {

namespace {

QString translated(const char* context, const char* text) {
    return QCoreApplication::translate(context, text);
}

} // namespace

PaintFileError PaintFileError::notPaintFile() {
    return PaintFileError(translated("PaintFileError", "This file is not an Qirn Paint document."));
}

PaintFileError PaintFileError::tooLarge() {
    return PaintFileError(
        translated("PaintFileError",
                   "The canvas in this file is larger than Qirn Paint can open (30,000 × 30,000 pixels)."));
}

PaintFileError PaintFileError::damaged(const QString& detail) {
    return PaintFileError(
        translated("PaintFileError",
                   "The Qirn Paint document is damaged (%1). Try File → Recover Autosaved Work.")
            .arg(detail));
}

PaintFileError PaintFileError::damagedTile(int64_t slot, const char* what) {
    PaintFileError error = damaged(QStringLiteral("tile %1").arg(slot) + QLatin1String(what));
    error.hasSoundParts_ = true;
    return error;
}

ExportError ExportError::cannotEncode(const QString& formatName) {
    return ExportError(translated("ExportError", "The picture could not be saved as %1.").arg(formatName));
}

ExportError ExportError::tooLongASide(const QString& formatName, int64_t longest) {
    return ExportError(
        translated("ExportError", "The picture could not be saved as %1: no side may exceed %2 pixels.")
            .arg(formatName, QLocale().toString(longest)));
}

ExportError ExportError::cannotRead() {
    return ExportError(
        translated("ExportError",
                   "This picture could not be opened. It may be damaged or in a format macOS cannot read."));
}

} // namespace qirn

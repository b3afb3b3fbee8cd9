#include "app/desktop/FileTypes.h"

#include "formats/native/PaintFile.h"

#include <algorithm>

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace qirn {

namespace {

constexpr qsizetype kMostNameBytes = 255;

struct TypeRow {
    const char* description;
    const char* extensions; // parted by blanks
};

constexpr TypeRow kPictures[] = {
    // in the order in which the panel shows them
    {"PNG", "png"}, {"JPEG", "jpg jpeg"}, {"TIFF", "tiff tif"}, {"HEIC", "heic heif"}, {"GIF", "gif"},
    {"BMP", "bmp"}, {"Photoshop", "psd"}, {"WebP", "webp"},     {"OpenRaster", "ora"},
};

QString words(const char* text) {
    return QCoreApplication::translate("qirn::FileTypes", text);
}

} // namespace

FileType FileTypes::native() {
    return {words(QT_TRANSLATE_NOOP("qirn::FileTypes", "Qirn Paint documents")),
            {QLatin1String(PaintFile::fileExtension)}};
}

QList<FileType> FileTypes::open() {
    return QList<FileType>{native()} + import();
}

QList<FileType> FileTypes::import() {
    QList<FileType> types;
    for (const TypeRow& row : kPictures)
        types << FileType{QLatin1String(row.description), QString::fromLatin1(row.extensions).split(u' ')};
    return types;
}

QList<FileType> FileTypes::brushes() {
    return {
        {words(QT_TRANSLATE_NOOP("qirn::FileTypes", "Qirn Paint brushes")), {QStringLiteral("qirnbrushes")}},
        {QStringLiteral("JSON"), {QStringLiteral("json")}}};
}

FileType FileTypes::gpl() {
    return {words(QT_TRANSLATE_NOOP("qirn::FileTypes", "GIMP palettes")), {QStringLiteral("gpl")}};
}

FileType FileTypes::aco() {
    return {words(QT_TRANSLATE_NOOP("qirn::FileTypes", "Photoshop swatches")), {QStringLiteral("aco")}};
}

QList<FileType> FileTypes::palettes() {
    return {gpl(),
            aco(),
            {words(QT_TRANSLATE_NOOP("qirn::FileTypes", "Lists of hexadecimal colors")),
             {QStringLiteral("txt"), QStringLiteral("hex")}}};
}

FileType FileTypes::exported(ExportFormat format) {
    const QString extension = QLatin1String(rowOf(format).fileExtension);
    for (const FileType& type : import()) {
        if (type.extensions.front() == extension) return type;
    }
    return {extension.toUpper(), {extension}};
}

bool FileTypes::isNative(const QString& path) {
    return QFileInfo(path).suffix().compare(QLatin1String(PaintFile::fileExtension), Qt::CaseInsensitive) ==
           0;
}

bool FileTypes::isOtherPicture(const QString& name, const FileType& type) {
    const QString suffix = QFileInfo(name).suffix().toLower();
    const auto types = open();
    return !type.extensions.contains(suffix) &&
           std::any_of(types.begin(), types.end(),
                       [&](const FileType& other) { return other.extensions.contains(suffix); });
}

QString FileTypes::fileName(const QString& name, const QString& extension) {
    QString safe = name;
    for (QChar& c : safe)
        if (c == u'/' || c.category() == QChar::Other_Control) c = u'-';
    if (safe.startsWith(u'.')) safe.replace(0, 1, u'-'); // it would be hidden
    const qsizetype room = kMostNameBytes - extension.toUtf8().size() - 1;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, safe);
    finder.toEnd();
    while (safe.left(finder.position()).toUtf8().size() > room) finder.toPreviousBoundary();
    return safe.left(finder.position()) + u'.' + extension;
}

QString FileTypes::withExtension(const QString& path, const FileType& type) {
    if (type.extensions.isEmpty()) return path;
    for (const QString& extension : type.extensions) {
        const bool isNameless = path.endsWith(QStringLiteral("/.") + extension, Qt::CaseInsensitive);
        if (path.endsWith(u'.' + extension, Qt::CaseInsensitive) && !isNameless) return path;
    }
    return path + u'.' + type.extensions[0];
}

} // namespace qirn

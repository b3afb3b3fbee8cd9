#include "app/desktop/RecentFiles.h"

#include "app/desktop/FileTypes.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

#include <algorithm>
#include <cerrno>

#include <QDateTime>
#include <QDir>
#include <QMimeDatabase>
#include <QRegularExpression>
#include <QStandardPaths>

namespace qirn {

namespace {
constexpr int64_t kLargestList = 8 * 1024 * 1024; // bytes; a longer one is left alone

/// By its name, which is all that a list of files needs to know.
QString typeOf(const QString& path) {
    if (FileTypes::isNative(path)) return QStringLiteral("image/x-qirnpaint");
    return QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension).name();
}

QString ourEntry(const QString& utcTime, int count) {
    return QStringLiteral("          <bookmark:application name=\"Qirn Paint\" "
                          "exec=\"&apos;QirnPaint %u&apos;\" modified=\"%1\" count=\"%2\"/>\n")
        .arg(utcTime)
        .arg(count);
}

/// The list with the bookmark that begins at a place used now, by us. What others wrote into it stays.
QString renewed(const QString& list, qsizetype start, const QString& utcTime) {
    const qsizetype end = list.indexOf(QStringLiteral("</bookmark>"), start);
    if (end < 0) return list;
    QString entry = list.mid(start, end - start);
    const qsizetype head = entry.indexOf(u'>');
    static const QRegularExpression times(QStringLiteral(" (modified|visited)=\"[^\"]*\""));
    static const QRegularExpression ours(
        QStringLiteral("[ \\t]*<bookmark:application name=\"Qirn Paint\"[^>]*count=\"(\\d+)\"[^>]*/>\\n?"));
    QString tag = entry.left(head);
    tag.replace(times, QStringLiteral(" \\1=\"%1\"").arg(utcTime));
    entry.replace(0, head, tag);
    int count = 1;
    if (const auto found = ours.match(entry); found.hasMatch()) {
        count = std::min(found.captured(1).toInt(), 1'000'000) + 1;
        entry.remove(found.capturedStart(), found.capturedLength());
    }
    const qsizetype place = entry.indexOf(QStringLiteral("        </bookmark:applications>"));
    if (place >= 0) entry.insert(place, ourEntry(utcTime, count));
    return list.left(start) + entry + list.mid(end);
}

} // namespace

QString recentListWith(const QString& list, const QString& path, const QString& utcTime) {
    QString text = list;
    if (text.isEmpty()) {
        text = QStringLiteral(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xbel version=\"1.0\"\n"
            "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
            "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n>\n</xbel>\n");
    }
    const qsizetype end = text.lastIndexOf(QStringLiteral("</xbel>"));
    if (end < 0) return list;
    const QString href = addressOfPath(path).toHtmlEscaped().replace(u'\'', QStringLiteral("&apos;"));
    for (const char* apostrophe : {"&apos;", "'", "&#39;", "%27"}) { // as others write it
        QString written = href;
        written.replace(QStringLiteral("&apos;"), QLatin1String(apostrophe));
        const qsizetype at = text.indexOf(QStringLiteral("<bookmark href=\"%1\"").arg(written));
        if (at >= 0) return renewed(text, at, utcTime);
    }
    text.insert(end, QStringLiteral("  <bookmark href=\"%1\" added=\"%2\" modified=\"%2\" visited=\"%2\">\n"
                                    "    <info>\n      <metadata owner=\"http://freedesktop.org\">\n"
                                    "        <mime:mime-type type=\"%3\"/>\n"
                                    "        <bookmark:applications>\n%4"
                                    "        </bookmark:applications>\n      </metadata>\n    </info>\n"
                                    "  </bookmark>\n")
                         .arg(href, utcTime, typeOf(path), ourEntry(utcTime, 1)));
    return text;
}

void noteRecentFile(const QString& path) {
    const QString listPath = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
                                 .filePath(QStringLiteral("recently-used.xbel"));
    QString list;
    try {
        list = QString::fromUtf8(readFile(listPath, kLargestList));
        if (list.isEmpty()) return;
    } catch (const ReadError& error) {
        if (error.systemError() != ENOENT) return;
    }
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    const QString longer = recentListWith(list, path, now);
    if (longer == list) return;
    try {
        writeAtomically(listPath, bytesOf(longer.toUtf8()));
    } catch (const FileError&) {
        // The desktop's list is a convenience; the picture itself is saved.
    }
}

} // namespace qirn

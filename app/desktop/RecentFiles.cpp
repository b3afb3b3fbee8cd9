#include "app/desktop/RecentFiles.h"

#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

#include <cerrno>

#include <QDateTime>
#include <QDir>
#include <QStandardPaths>

namespace qirn {

namespace {
constexpr int64_t kLargestList = 8 * 1024 * 1024; // bytes; a longer one is left alone
}

QString recentListWith(const QString& list, const QString& path, const QString& utcTime) {
    QString text = list;
    if (text.isEmpty()) {
        text = QStringLiteral(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xbel version=\"1.0\"\n"
            "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
            "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n>\n</xbel>\n");
    }
    const qsizetype end = text.lastIndexOf(QStringLiteral("</xbel>"));
    const QByteArray encoded =
        bytesOfPath(path).toPercentEncoding("!$&'()*+,;=:@/"); // as in a file's address
    const QString href = QString::fromLatin1("file://" + encoded).toHtmlEscaped();
    if (end < 0 || text.contains(QStringLiteral("href=\"%1\"").arg(href))) return list;
    text.insert(end, QStringLiteral(
                         "  <bookmark href=\"%1\" added=\"%2\" modified=\"%2\" visited=\"%2\">\n"
                         "    <info>\n      <metadata owner=\"http://freedesktop.org\">\n"
                         "        <mime:mime-type type=\"application/x-qirnpaint\"/>\n"
                         "        <bookmark:applications>\n"
                         "          <bookmark:application name=\"Qirn Paint\" "
                         "exec=\"&apos;QirnPaint %u&apos;\" modified=\"%2\" count=\"1\"/>\n"
                         "        </bookmark:applications>\n      </metadata>\n    </info>\n  </bookmark>\n")
                         .arg(href, utcTime));
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

// Writes the manual page from the text that --help prints, while the program is built:
//     write_manual_page FILE DATE     the date of the release, as 2026-03-01
#include "core/PaintEngine.h"
#include "program/arguments/Manual.h"

#include <cstdio>
#include <utility>

#include <QFile>

using namespace qirn;

namespace {

constexpr int kLineWidth = 72; // characters

/// A word of a man page: what its language would take for itself stands as it is, and options can be copied.
QString roff(QString word) {
    const bool isOption = word.startsWith(u'-') || word.startsWith(QStringLiteral("\"-"));
    word.replace(u'\\', QStringLiteral("\\e"));
    if (isOption) word.replace(u'-', QStringLiteral("\\-"));
    word.replace(u'"', QStringLiteral("\\(dq")).replace(u'\'', QStringLiteral("\\(aq"));
    return word.startsWith(u'.') ? QStringLiteral("\\&") + word : word;
}

QString lines(const QString& text) {
    QString page, line;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        if (!line.isEmpty() && line.size() + word.size() > kLineWidth)
            page += std::exchange(line, {}) + u'\n';
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + roff(word);
    }
    return page + line + u'\n';
}

/// Options stand bold, what they take and what may be left out in italics.
QString callLine(const QString& call) {
    QStringList words;
    for (const QString& word : call.split(u' ')) {
        const bool isLiteral =
            word.startsWith(u'-') || word == QStringLiteral("QirnPaint") || word != word.toUpper();
        const bool isNumber = word.front().isDigit();
        words << (isLiteral || isNumber ? "\\fB" : "\\fI") + roff(word) + "\\fR";
    }
    return words.join(u' ') + u'\n';
}

QString page(const Manual& manual, const QString& date) {
    QString text =
        QStringLiteral(".TH QIRNPAINT 1 %1 \"Qirn Paint %2\"\n.SH NAME\nQirnPaint \\- %3\n.SH SYNOPSIS\n")
            .arg(date, QLatin1String(PaintEngine::version), manual.summary);
    for (const QString& call : manual.calls)
        text += (&call == &manual.calls.front() ? "" : ".br\n") + callLine(call);
    for (const Manual::Section& section : manual.sections) {
        text += QStringLiteral(".SH ") + section.title.toUpper() + u'\n';
        for (const QString& paragraph : section.paragraphs) {
            if (&paragraph != &section.paragraphs.front()) text += QStringLiteral(".PP\n");
            text += lines(paragraph);
        }
        for (const Manual::Row& row : section.rows) text += ".TP\n" + callLine(row.call) + lines(row.what);
    }
    return text;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    QFile file(QString::fromLocal8Bit(argv[1]));
    const QByteArray text = page(Manual::ofProgram(), QString::fromLocal8Bit(argv[2])).toUtf8();
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
    if (!isWritten) std::fprintf(stderr, "write_manual_page: %s could not be written\n", argv[1]);
    return isWritten ? 0 : 1;
}

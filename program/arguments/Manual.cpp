#include "program/arguments/Manual.h"

namespace qirn {

namespace {

constexpr int kWidth = 80, kCallWidth = 24; // characters

/// The words of a text in lines, each begun by so many blanks. The first goes on where `line` ends.
QString wrapped(QString line, const QString& text, int indent) {
    QString lines;
    bool isFirst = true;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        if (!isFirst && line.size() + 1 + word.size() > kWidth) {
            lines += line + u'\n';
            line = QString(indent, u' ');
            isFirst = true;
        }
        line += (isFirst ? QString() : QStringLiteral(" ")) + word;
        isFirst = false;
    }
    return lines + line + u'\n';
}

QString rowText(const Manual::Row& row) {
    const QString call = QStringLiteral("  ") + row.call;
    const QString margin(kCallWidth, u' ');
    if (call.size() + 2 > kCallWidth) return call + u'\n' + wrapped(margin, row.what, kCallWidth);
    return wrapped(call.leftJustified(kCallWidth), row.what, kCallWidth);
}

} // namespace

QString Manual::plainText() const {
    QString text;
    for (const QString& call : calls) text += (text.isEmpty() ? "Usage: " : "       ") + call + u'\n';
    for (const Section& section : sections) {
        text += u'\n';
        // The first section says what the program does, which needs no heading here.
        if (&section != &sections.front()) text += section.title + QStringLiteral(":\n");
        for (const QString& paragraph : section.paragraphs) text += wrapped({}, paragraph, 0);
        for (const Row& row : section.rows) text += rowText(row);
    }
    return text;
}

} // namespace qirn

#include "kit/help/HelpText.h"

#include <utility>

namespace qirn {

namespace {

using Piece = HelpParagraph::Piece;

const QString kHeading = QStringLiteral("## "), kBullet = QStringLiteral("• ");

std::vector<Piece> piecesOf(const QString& line) {
    std::vector<Piece> pieces;
    qsizetype at = 0;
    while (at < line.size()) {
        const qsizetype open = line.indexOf(u'«', at);
        const qsizetype close = open < 0 ? -1 : line.indexOf(u'»', open);
        const qsizetype textEnd = close < 0 ? line.size() : open;
        if (textEnd > at) pieces.push_back({line.mid(at, textEnd - at), {}});
        if (close < 0) break;
        pieces.push_back({{}, line.mid(open + 1, close - open - 1)});
        at = close + 1;
    }
    return pieces;
}

} // namespace

QString joinedLines(const QString& source) {
    QString body;
    bool goesOn = false; // with the line before
    for (const QString& line : source.split(u'\n')) {
        const QString text = line.trimmed();
        const bool isHeading = text.startsWith(kHeading);
        if (!text.isEmpty()) {
            if (!body.isEmpty())
                body += goesOn && !isHeading && !text.startsWith(kBullet) ? QChar(u' ') : QChar(u'\n');
            body += text;
        }
        goesOn = !text.isEmpty() && !isHeading;
    }
    return body;
}

std::vector<HelpParagraph> paragraphsOf(const QString& body) {
    using Kind = HelpParagraph::Kind;
    std::vector<HelpParagraph> paragraphs;
    for (const QString& line : body.split(u'\n')) {
        HelpParagraph paragraph;
        qsizetype mark = 0;
        for (const auto& [sign, kind] : {std::pair{kHeading, Kind::heading}, {kBullet, Kind::bullet}}) {
            if (!line.startsWith(sign)) continue;
            paragraph.kind = kind;
            mark = sign.size();
        }
        paragraph.pieces = piecesOf(line.mid(mark).trimmed());
        if (!paragraph.pieces.empty()) paragraphs.push_back(std::move(paragraph));
    }
    return paragraphs;
}

} // namespace qirn

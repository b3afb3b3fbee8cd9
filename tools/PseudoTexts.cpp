#include "tools/PseudoTexts.h"

#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace qirn {

QString pseudo(const QString& text) {
    // Places for values, keys of the manual, its links, file patterns, and what is written in capitals.
    static const QRegularExpression kept(
        QStringLiteral("%L?(?:\\d+|n)|\\{[^}]*\\}|«[^»]*»|\\(\\*[^)]*\\)|\\[\\*\\]|<[^>]*>|\\b[A-Z]{2,}\\b"));
    const QString plain = QStringLiteral("aeiouyAEIOU"), accented = QStringLiteral("àéîöüÿÀÉÎÖÜ");
    QString longer;
    qsizetype at = 0, added = 0;
    const auto addUpTo = [&](qsizetype end) {
        for (; at < end; ++at) {
            const qsizetype vowel = plain.indexOf(text[at]);
            longer += vowel < 0 ? text[at] : accented[vowel];
            if (vowel < 0 || (added > 0 && added * 5 >= 2 * (at + 1))) continue;
            longer += accented[vowel].toLower();
            ++added;
        }
    };
    for (auto matches = kept.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        addUpTo(match.capturedStart());
        longer += match.captured();
        at = match.capturedEnd();
    }
    addUpTo(text.size());
    // Words of few vowels get the rest behind them.
    qsizetype letters = 0;
    const QString changed = QString(text).remove(kept);
    for (const QChar sign : changed) letters += sign.isLetter();
    for (; letters > 2 && letters < 40 && added * 5 < 2 * letters; ++added) longer += u'ß';
    return longer;
}

QString PseudoTexts::translate(const char* context, const char* source, const char*, int) const {
    asked_.emplace(context, source);
    return pseudo(QString::fromUtf8(source));
}

QStringList PseudoTexts::missingIn(const QString& tsFile) const {
    std::set<Text> known;
    QFile file(tsFile);
    if (!file.open(QIODevice::ReadOnly)) return {QStringLiteral("The file of texts cannot be read.")};
    QXmlStreamReader reader(&file);
    QByteArray context;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement()) continue;
        if (reader.name() == QLatin1String("name")) context = reader.readElementText().toUtf8();
        if (reader.name() == QLatin1String("source"))
            known.emplace(context, reader.readElementText().toUtf8());
    }
    QStringList missing;
    for (const Text& text : asked_) {
        if (!text.first.startsWith('Q') || text.first.startsWith("Qirn"))
            if (!text.second.isEmpty() && !known.contains(text))
                missing << QStringLiteral("%1: \"%2\"")
                               .arg(QString::fromUtf8(text.first), QString::fromUtf8(text.second));
    }
    return missing;
}

} // namespace qirn

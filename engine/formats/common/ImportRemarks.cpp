#include "formats/common/ImportRemarks.h"

#include <QCoreApplication>
#include <QStringList>

namespace qirn {

QString wordsOf(const ImportRemarks& remarks) {
    constexpr std::pair<ImportRemark::Kind, const char*> kSentences[] = {
        {ImportRemark::Kind::without, QT_TRANSLATE_NOOP("ImportRemark", "Opened without: %1.")},
        {ImportRemark::Kind::asOneLayer, QT_TRANSLATE_NOOP("ImportRemark", "Opened as one layer: %1.")},
    };
    QStringList sentences;
    for (const auto& [kind, sentence] : kSentences) {
        QStringList all;
        for (const ImportRemark& remark : remarks)
            if (remark.kind == kind) all += remark.what;
        if (!all.isEmpty())
            sentences +=
                QCoreApplication::translate("ImportRemark", sentence).arg(all.join(QStringLiteral(", ")));
    }
    return sentences.join(u' ');
}

} // namespace qirn

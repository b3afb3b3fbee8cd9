#pragma once
#include <vector>

#include <QString>
#include <QStringList>

namespace qirn {

/// How the program is called: what `--help` prints, and what the manual page is made of while the program is built.
struct Manual {
    struct Row {
        QString call; ///< "--make-sample FILE"
        QString what; ///< In sentences.
    };
    struct Section {
        QString title;
        QStringList paragraphs;
        std::vector<Row> rows;
    };
    QString summary;   ///< In a few words.
    QStringList calls; ///< "QirnPaint [FILE]..."
    std::vector<Section> sections;

    static Manual ofProgram();
    QString plainText() const; ///< In lines of a terminal's width.
};

} // namespace qirn

#pragma once
#include <vector>

#include <QString>

namespace qirn {

/// One paragraph of a topic's body, without its marks.
struct HelpParagraph {
    enum class Kind { plain, heading, bullet };
    /// A piece of text, or a link.
    struct Piece {
        QString text;  ///< Empty for a link, which shows the title of its topic.
        QString topic; ///< The id that a link goes to; empty for text.
        bool operator==(const Piece&) const = default;
    };

    Kind kind = Kind::plain;
    std::vector<Piece> pieces;
};

/// A text whose lines are broken for its source, as the lines of a body: an empty line, a heading or a bullet begins a new
/// paragraph, and any other line goes on with the one before.
QString joinedLines(const QString& source);

/// What the marks of a body mean (`QirnHelpTopic`). Lines without text give nothing.
std::vector<HelpParagraph> paragraphsOf(const QString& body);

} // namespace qirn

#pragma once
#include <vector>

#include <QString>
#include <QStringList>

namespace qirn {

/// A page of the manual.
///
/// The body is plain text, a paragraph a line, with light marks: a line that begins with "## " is a heading, one that
/// begins with "• " a bullet; an id between guillemets, as in «layers», is a link to that topic and is shown as its
/// title.
struct QirnHelpTopic {
    QString id; ///< Of one topic only.
    QString title;
    QString body;
    QStringList keywords = {}; ///< What else it may be looked for by; not shown.
};

/// The manual: what the application installed, followed by the kit's own topics.
namespace QirnHelp {

/// Takes the application's topics, in the order in which they are listed. Again when their texts have changed: an open
/// help window follows.
void setTopics(std::vector<QirnHelpTopic> topics);

const std::vector<QirnHelpTopic>& topics();    ///< The application's.
const std::vector<QirnHelpTopic>& allTopics(); ///< And the kit's, save those whose id the application uses.
const QirnHelpTopic*
topicWithId(const QString& id); ///< Null where there is none; valid until topics are set again.

/// The topics that hold every word of the query in title, body or keywords, those with one of the words in the title
/// first, otherwise in the order of the list. Case and accents do not count. A query without words gives all topics.
std::vector<QirnHelpTopic> search(const QString& query);

/// Opens the help window, or brings it to the front, at the topic with that id; without one, or with one that is not
/// there, it stays at its page.
void show(const QString& topic = {});

} // namespace QirnHelp

} // namespace qirn

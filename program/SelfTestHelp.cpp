#include "program/SelfTestHelp.h"

#include "app/model/choices/Tool.h"
#include "core/BlendMode.h"
#include "kit/help/QirnHelp.h"
#include "program/SelfTestReport.h"
#include "shell/help/PaintHelp.h"

#include <algorithm>

namespace qirn {

namespace {

bool namesIt(const QirnHelpTopic* topic, const QString& words) {
    return topic && (topic->title.contains(words) || topic->body.contains(words));
}

QStringList found(const QString& query) {
    QStringList ids;
    for (const QirnHelpTopic& topic : QirnHelp::search(query)) ids << topic.id;
    return ids;
}

} // namespace

void selfTestHelp(SelfTestReport& report) {
    QirnHelp::setTopics(PaintHelp::topics());
    report.check(QStringLiteral("Every tool has a help topic that names it"),
                 std::ranges::all_of(kTools, [](const ToolRow& row) {
                     return namesIt(QirnHelp::topicWithId(QLatin1String(row.helpTopic)), toolTitle(row.tool));
                 }));
    report.check(QStringLiteral("Every blend mode is explained"),
                 std::ranges::all_of(kBlendModes, [](const BlendModeRow& row) {
                     return namesIt(QirnHelp::topicWithId(QStringLiteral("blend")),
                                    QLatin1String(row.displayName));
                 }));
    report.check(QStringLiteral("A search for nothing lists all topics"),
                 found(QStringLiteral(" ")).size() == std::ssize(QirnHelp::allTopics()) &&
                     QirnHelp::allTopics().size() == 38);
    report.check(QStringLiteral("A search for two words finds the topic that has both"),
                 found(QStringLiteral("multiply screen")).contains(QStringLiteral("blend")) &&
                     found(QStringLiteral("multiply zzqx")).isEmpty());
    report.check(QStringLiteral("Case and accents do not count"),
                 found(QStringLiteral("ÉRASÈR")) == found(QStringLiteral("eraser")) &&
                     found(QStringLiteral("eraser")).size() > 1);
    report.check(QStringLiteral("A topic with the word in its title comes first"),
                 found(QStringLiteral("eraser")).front() == QStringLiteral("eraser"));
}

} // namespace qirn

#include "shell/help/PaintHelp.h"

#include <algorithm>

#include <QCoreApplication>
#include <QKeySequence>
#include <QRegularExpression>

#include "app/commands/CommandRows.h"
#include "app/commands/PaintCommands.h"
#include "app/desktop/HostWords.h"
#include "app/model/choices/Tool.h"
#include "kit/help/HelpText.h"
#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

namespace {

const TopicText* const kTopics[] = {
    &kStart,          &kWorkspace,     &kNew,       &kNavigate,   &kBrush,   &kBrushSettings,
    &kAirbrush,       &kTablet,        &kEraser,    &kSmudgeBlur, &kBucket,  &kGradient,
    &kEyedropper,     &kSelections,    &kTransform, &kShapes,     &kText,    &kColor,
    &kPalettes,       &kLayers,        &kBlend,     &kClipping,   &kOnion,   &kUndo,
    &kSaving,         &kAutosave,      &kExport,    &kOpen,       &kImage,   &kTutorialPaint,
    &kTutorialChrome, &kTutorialOnion, &kShortcuts, &kPrefs,      &kTrouble, &kPerformance,
};

QString words(const char* source) {
    return QCoreApplication::translate("PaintHelp", source);
}

QString keyText(int key) {
    return QKeySequence(key).toString(QKeySequence::NativeText);
}

QString listed(const QString& title, const QStringList& keys) {
    return QStringLiteral("\n• %1\t%2").arg(title.simplified(), keys.join(QStringLiteral(", ")));
}

/// Every command and tool with its keys.
QString allKeys() {
    QString text = QStringLiteral("## ") + words(QIRN_HELP("Tools"));
    for (const ToolRow& row : kTools) text += listed(toolTitle(row.tool), {QChar::fromLatin1(row.key)});
    const char* menu = nullptr;
    for (const CommandRow& row : commandRows()) {
        if (!row.name || !row.title || keysOf(row).empty()) continue;
        if (qstrcmp(menu, row.menu) != 0)
            text +=
                QStringLiteral("\n## ") + words(QIRN_HELP("%1 menu")).arg(PaintCommands::tr(menu = row.menu));
        QStringList keys;
        for (const int key : keysOf(row)) keys << keyText(key);
        text += listed(PaintCommands::tr(row.title), keys);
    }
    return text;
}

/// Keys first named as on this machine, so that those of the tables, which are, stay as they are.
QString bodyOf(const TopicText& topic) {
    static const QRegularExpression name(QStringLiteral("\\{([A-Za-z]+)\\}"));
    const QString source = hostWords(joinedLines(words(topic.body)));
    QString body;
    qsizetype at = 0;
    for (auto matches = name.globalMatch(source); matches.hasNext();) {
        const auto match = matches.next();
        body += source.mid(at, match.capturedStart() - at) + keyWords(match.captured(1));
        at = match.capturedEnd();
    }
    body += source.mid(at);
    return body.replace(QStringLiteral("{all keys}"), allKeys());
}

} // namespace

QString keyWords(const QString& name) {
    if (const auto tool = toolWithId(name)) return QChar::fromLatin1(rowOf(*tool).key);
    for (const CommandRow& row : commandRows()) {
        if (name != QLatin1String(row.name)) continue;
        const std::vector<int> keys = keysOf(row);
        return keys.empty() ? words(QIRN_HELP("no key")) : keyText(keys.front());
    }
    return {};
}

std::vector<QirnHelpTopic> topics() {
    std::vector<QirnHelpTopic> all;
    for (const TopicText* topic : kTopics) {
        all.push_back({QString::fromLatin1(topic->id), words(topic->title), bodyOf(*topic),
                       words(topic->keywords).split(QStringLiteral(", "))});
    }
    return all;
}

} // namespace qirn::PaintHelp

#include "shell/help/PaintHelp.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include "app/commands/KeyOwners.h"
#include "app/desktop/HostWords.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/model/choices/FixedKeys.h"
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

QString listed(const QString& title, const QStringList& keys) {
    return QStringLiteral("• %1\t%2").arg(title.simplified(), keys.join(QStringLiteral(", ")));
}

/// The keys of the canvas that are always the same; those that do the same in one line.
QStringList canvasKeys() {
    QStringList lines{QStringLiteral("## ") + words(QIRN_HELP("Canvas"))};
    QStringList keys;
    const auto fixed = fixedKeys();
    for (std::size_t i = 0; i < fixed.size(); ++i) {
        keys << keyText(fixed[i].key);
        if (i + 1 < fixed.size() && qstrcmp(fixed[i].what, fixed[i + 1].what) == 0) continue;
        lines << listed(whatItDoes(fixed[i]), keys);
        keys.clear();
    }
    return lines;
}

/// Every command and tool with its keys.
QString allKeys(const KeyChoices& choices) {
    QStringList lines;
    const char* group = nullptr;
    for (const KeyOwner& owner : keyOwners()) {
        QStringList keys;
        for (const int key : keysOf(owner, choices)) keys << keyText(key);
        if (keys.isEmpty()) continue;
        if (qstrcmp(group, owner.group) != 0) {
            group = owner.group;
            const QString title =
                owner.command ? words(QIRN_HELP("%1 menu")).arg(groupOf(owner)) : groupOf(owner);
            lines << QStringLiteral("## ") + title;
        }
        lines << listed(titleOf(owner), keys);
    }
    return (lines << canvasKeys()).join(u'\n');
}

/// Keys first named as on this machine, so that those of the tables, which are, stay as they are.
QString bodyOf(const TopicText& topic, const KeyChoices& choices) {
    static const QRegularExpression name(QStringLiteral("\\{([A-Za-z]+)\\}"));
    const QString source = hostWords(joinedLines(words(topic.body)));
    QString body;
    qsizetype at = 0;
    for (auto matches = name.globalMatch(source); matches.hasNext();) {
        const auto match = matches.next();
        body += source.mid(at, match.capturedStart() - at) + keyWords(match.captured(1), choices);
        at = match.capturedEnd();
    }
    body += source.mid(at);
    return body.replace(QStringLiteral("{all keys}"), allKeys(choices));
}

} // namespace

QString keyWords(const QString& name, const KeyChoices& choices) {
    const auto tool = toolWithId(name);
    for (const KeyOwner& owner : keyOwners()) {
        if (tool ? owner.command || owner.tool != *tool : owner.name != name) continue;
        const std::vector<int> keys = keysOf(owner, choices);
        return keys.empty() ? words(QIRN_HELP("no key")) : keyText(keys.front());
    }
    return {};
}

std::vector<QirnHelpTopic> topics(const KeyChoices& choices) {
    std::vector<QirnHelpTopic> all;
    for (const TopicText* topic : kTopics) {
        all.push_back({QString::fromLatin1(topic->id), words(topic->title), bodyOf(*topic, choices),
                       words(topic->keywords).split(QStringLiteral(", "))});
    }
    return all;
}

void followKeys(PaintModel& model) {
    if (!model.keys().isEmpty()) QirnHelp::setTopics(topics(model.keys()));
    QObject::connect(&model, &PaintModel::changed, &model, [&model, shown = model.keys()]() mutable {
        if (shown == model.keys()) return;
        shown = model.keys();
        guarded(model, [&] { QirnHelp::setTopics(topics(shown)); });
    });
}

} // namespace qirn::PaintHelp

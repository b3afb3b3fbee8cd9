#include "app/commands/rows/MenuRows.h"

#include "kit/help/QirnAbout.h"
#include "kit/help/QirnHelp.h"

#include <utility>

namespace qirn::MenuRows {

namespace {

template <const char* kTopic> void topic(PaintModel&) {
    QirnHelp::show(QString::fromLatin1(kTopic));
}

constexpr std::pair<PaintSheet::Kind, const char*> kSheetTopics[] = {
    {PaintSheet::Kind::text, "text"},
    {PaintSheet::Kind::newDocument, "new"},
    {PaintSheet::Kind::exportPicture, "export"},
    {PaintSheet::Kind::imageSize, "image"},
    {PaintSheet::Kind::canvasSize, "image"},
    {PaintSheet::Kind::recovery, "autosave"},
    {PaintSheet::Kind::renameLayer, "layers"},
};

/// The page of the sheet that is up, or else of the tool in hand.
void topicAtHand(PaintModel& model) {
    const char* topic = rowOf(model.tool()).helpTopic;
    for (const auto& [kind, ofSheet] : kSheetTopics)
        if (model.sheet() && model.sheet()->kind == kind) topic = ofSheet;
    QirnHelp::show(QString::fromLatin1(topic));
}

constexpr char kStart[] = "start", kShortcuts[] = "shortcuts";

const CommandRow kRows[] = {
    {.menu = "Help",
     .name = "help",
     .title = QIRN_TITLE("Qirn Paint Help"),
     .key = Command | Qt::Key_Question,
     .run = topicAtHand,
     .secondKeys = {Qt::Key_F1},
     .overSheets = true},
    {.menu = "Help",
     .name = "shortcuts",
     .title = QIRN_TITLE("Keyboard Shortcuts"),
     .run = topic<kShortcuts>,
     .overSheets = true},
    {.menu = "Help",
     .name = "quickStart",
     .title = QIRN_TITLE("Quick Start"),
     .run = topic<kStart>,
     .overSheets = true},
    {"Help", nullptr},
    {.menu = "Help",
     .name = "about",
     .title = QIRN_TITLE("About Qirn Paint"),
     .run = [](PaintModel&) { QirnAbout::show(); },
     .overSheets = true},
};

} // namespace

std::span<const CommandRow> help() {
    return kRows;
}

} // namespace qirn::MenuRows

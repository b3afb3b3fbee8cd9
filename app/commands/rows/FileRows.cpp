#include "app/commands/rows/MenuRows.h"

#include "app/commands/PaintCommands.h"
#include "app/model/Clipboard.h"
#include "app/model/OpenPictures.h"
#include "app/model/PictureFiles.h"

#include <QFileInfo>

namespace qirn::MenuRows {

namespace {

std::vector<CommandChoice> recentPictures(PaintModel& model) {
    std::vector<CommandChoice> choices;
    for (const QString& path : model.files().recentFiles()) {
        choices.push_back({QFileInfo(path).fileName(), [&model, path] { model.files().open(path); }});
    }
    if (!choices.empty()) choices.push_back({});
    choices.push_back({PaintCommands::tr("Clear"), [&model] { model.files().forgetRecentFiles(); }});
    return choices;
}

void save(PaintModel& model) {
    model.files().save(nullptr, PictureFiles::SaveAs::no);
}

void saveAs(PaintModel& model) {
    model.files().save(nullptr, PictureFiles::SaveAs::yes);
}

const CommandRow kRows[] = {
    {"File", "newCanvas", QIRN_TITLE("New Canvas…"), Command | Qt::Key_N,
     sheet<PaintSheet::Kind::newDocument>},
    {"File", "open", QIRN_TITLE("Open…"), Command | Qt::Key_O,
     call<&PaintModel::files, &PictureFiles::openPanel>},
    {.menu = "File", .name = "openRecent", .title = QIRN_TITLE("Open Recent"), .choices = recentPictures},
    {"File", "importLayer", QIRN_TITLE("Import Picture as Layer…"), Command | Shift | Qt::Key_I,
     call<&PaintModel::clipboard, &Clipboard::importImageAsLayer>},
    {"File", "recover", QIRN_TITLE("Recover Autosaved Work…"), 0, sheet<PaintSheet::Kind::recovery>},
    {"File", nullptr},
    {"File", "closePicture", QIRN_TITLE("Close Picture"), Command | Qt::Key_W,
     call<&PaintModel::pictures, &OpenPictures::closeCurrent>},
    {"File", "save", QIRN_TITLE("Save"), Command | Qt::Key_S, save},
    {"File", "saveAs", QIRN_TITLE("Save As…"), Command | Shift | Qt::Key_S, saveAs},
    {"File", "export", QIRN_TITLE("Export (PNG, JPEG, TIFF, PSD)…"), Command | Qt::Key_E,
     sheet<PaintSheet::Kind::exportPicture>},
    {"File", nullptr},
    {.menu = "File",
     .name = "quit",
     .title = QIRN_TITLE("Quit"),
     .key = Command | Qt::Key_Q,
     .run = [](QWidget& window) { window.close(); },
     .overSheets = true},
};

} // namespace

std::span<const CommandRow> file() {
    return kRows;
}

} // namespace qirn::MenuRows

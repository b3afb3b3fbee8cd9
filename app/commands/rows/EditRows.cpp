#include "app/commands/rows/MenuRows.h"

#include "app/commands/PaintCommands.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Clipboard.h"
#include "app/model/Colors.h"
#include "app/model/PendingTransform.h"

namespace qirn::MenuRows {

namespace {

QString undoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().undoName() : std::nullopt;
    return name ? PaintCommands::tr("Undo %1").arg(*name) : PaintCommands::tr("Undo");
}

QString redoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().redoName() : std::nullopt;
    return name ? PaintCommands::tr("Redo %1").arg(*name) : PaintCommands::tr("Redo");
}

bool transformPending(const PaintModel& model) {
    return model.transform().isPending();
}

template <Tool kTool> QString toolTitleWithKey(const PaintModel& model) {
    return titleWithKey(kTool, model.keys());
}

template <Tool kTool> void pick(PaintModel& model) {
    model.setTool(kTool);
}

const CommandRow kRows[] = {
    {.menu = "Edit",
     .name = "undo",
     .title = QIRN_TITLE("Undo"),
     .key = Command | Qt::Key_Z,
     .run = call<&PaintModel::undo>,
     .liveTitle = undoTitle,
     .inText = Typing::TextAction::undo},
    {.menu = "Edit",
     .name = "redo",
     .title = QIRN_TITLE("Redo"),
     .key = Command | Shift | Qt::Key_Z,
     .run = call<&PaintModel::redo>,
     .liveTitle = redoTitle,
     .secondKeys = {Command | Qt::Key_Y},
     .inText = Typing::TextAction::redo},
    {"Edit", nullptr},
    {.menu = "Edit",
     .name = "cut",
     .title = QIRN_TITLE("Cut"),
     .key = Command | Qt::Key_X,
     .run = call<&PaintModel::clipboard, &Clipboard::cut>,
     .inText = Typing::TextAction::cut},
    {.menu = "Edit",
     .name = "copy",
     .title = QIRN_TITLE("Copy"),
     .key = Command | Qt::Key_C,
     .run = [](PaintModel& model) { model.clipboard().copy(Merged::no); },
     .inText = Typing::TextAction::copy},
    {"Edit", "copyMerged", QIRN_TITLE("Copy Merged"), Command | Shift | Qt::Key_C,
     [](PaintModel& model) { model.clipboard().copy(Merged::yes); }},
    {.menu = "Edit",
     .name = "paste",
     .title = QIRN_TITLE("Paste as New Layer"),
     .key = Command | Qt::Key_V,
     .run = call<&PaintModel::clipboard, &Clipboard::paste>,
     .inText = Typing::TextAction::paste},
    {"Edit", nullptr},
    {"Edit", "fillPrimary", QIRN_TITLE("Fill with Paint Color"), Option | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().primary()); }},
    {"Edit", "fillSecondary", QIRN_TITLE("Fill with Second Color"), Command | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().secondary()); }},
    {"Edit", "clear", QIRN_TITLE("Clear (Delete Pixels)"), 0, LayerEdits::clearLayer},
    {"Edit", nullptr},
    {"Edit", "freeTransform", QIRN_TITLE("Free Transform"), Command | Qt::Key_T,
     call<&PaintModel::transform, &PendingTransform::beginTransform>},
    {"Edit", "applyTransform", QIRN_TITLE("Apply Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::applyTransform>, nullptr, nullptr, transformPending},
    {"Edit", "cancelTransform", QIRN_TITLE("Cancel Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::cancelTransform>, nullptr, nullptr, transformPending},
    {"Edit", nullptr},
    {.menu = "Edit",
     .name = "preferences",
     .title = QIRN_TITLE("Preferences…"),
     .key = Command | Qt::Key_Comma,
     .run = call<&PaintModel::showPreferences>,
     .overSheets = true},

    {.menu = "Select",
     .name = "selectAll",
     .title = QIRN_TITLE("Select All"),
     .key = Command | Qt::Key_A,
     .run = CanvasEdits::selectAll,
     .inText = Typing::TextAction::selectAll},
    {"Select", "deselect", QIRN_TITLE("Deselect"), Command | Qt::Key_D, CanvasEdits::deselect},
    {"Select", "invertSelection", QIRN_TITLE("Invert Selection"), Command | Option | Qt::Key_I,
     CanvasEdits::invertSelection},
    {"Select", nullptr},
    {"Select", "selectRect", QIRN_TITLE("Rectangle Select"), 0, pick<Tool::selectRect>,
     toolTitleWithKey<Tool::selectRect>},
    {"Select", "selectEllipse", QIRN_TITLE("Ellipse Select"), 0, pick<Tool::selectEllipse>,
     toolTitleWithKey<Tool::selectEllipse>},
    {"Select", "lasso", QIRN_TITLE("Lasso Select"), 0, pick<Tool::lasso>, toolTitleWithKey<Tool::lasso>},
    {"Select", "crop", QIRN_TITLE("Crop to Selection"), 0, CanvasEdits::cropToSelection},
};

} // namespace

std::span<const CommandRow> edit() {
    return kRows;
}

} // namespace qirn::MenuRows

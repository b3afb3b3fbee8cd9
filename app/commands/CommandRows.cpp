#include "app/commands/CommandRows.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/PaintCommands.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Clipboard.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "app/model/PendingTransform.h"
#include "platform/Require.h"

#include <algorithm>

#include <QFileInfo>
#include <QKeySequence>

namespace qirn {

namespace {

constexpr int Command = Qt::CTRL, Shift = Qt::SHIFT, Option = Qt::ALT, Control = Qt::META;

QString undoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().undoName() : std::nullopt;
    return name ? PaintCommands::tr("Undo %1").arg(*name) : PaintCommands::tr("Undo");
}

QString redoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().redoName() : std::nullopt;
    return name ? PaintCommands::tr("Redo %1").arg(*name) : PaintCommands::tr("Redo");
}

QString onionTitle(const PaintModel& model) {
    const bool on = model.current() && model.current()->doc().onion.enabled;
    return on ? PaintCommands::tr("Turn Onion Skin Off") : PaintCommands::tr("Turn Onion Skin On");
}

bool transformPending(const PaintModel& model) {
    return model.transform().isPending();
}

void togglePerformance(PaintModel& model) {
    PaintPrefs prefs = model.prefs();
    prefs.showPerformance = !prefs.showPerformance;
    model.setPrefs(prefs);
}

template <auto kMethod> void call(PaintModel& model) {
    (model.*kMethod)();
}

template <auto kSubject, auto kMethod> void call(PaintModel& model) {
    ((model.*kSubject)().*kMethod)();
}

template <PaintSheet::Kind kKind> void sheet(PaintModel& model) {
    model.showSheet({kKind});
}

std::vector<CommandChoice> recentPictures(PaintModel& model) {
    std::vector<CommandChoice> choices;
    for (const QString& path : model.pictures().recentFiles()) {
        choices.push_back({QFileInfo(path).fileName(), [&model, path] { model.pictures().open(path); }});
    }
    if (!choices.empty()) choices.push_back({});
    choices.push_back({PaintCommands::tr("Clear"), [&model] { model.pictures().forgetRecentFiles(); }});
    return choices;
}

void save(PaintModel& model) {
    model.pictures().save(nullptr, OpenPictures::SaveAs::no);
}
void saveAs(PaintModel& model) {
    model.pictures().save(nullptr, OpenPictures::SaveAs::yes);
}

// The menu bar, in order.
const CommandRow kCommands[] = {
    {"File", "newCanvas", QT_TRANSLATE_NOOP("qirn::PaintCommands", "New Canvas…"), Command | Qt::Key_N,
     sheet<PaintSheet::Kind::newDocument>},
    {"File", "open", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Open…"), Command | Qt::Key_O,
     call<&PaintModel::pictures, &OpenPictures::openPanel>},
    {.menu = "File",
     .name = "openRecent",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Open Recent"),
     .choices = recentPictures},
    {"File", "importLayer", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Import Picture as Layer…"),
     Command | Shift | Qt::Key_I, call<&PaintModel::clipboard, &Clipboard::importImageAsLayer>},
    {"File", "recover", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Recover Autosaved Work…"), 0,
     sheet<PaintSheet::Kind::recovery>},
    {"File", nullptr},
    {"File", "closePicture", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Close Picture"), Command | Qt::Key_W,
     call<&PaintModel::pictures, &OpenPictures::closeCurrent>},
    {"File", "save", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Save"), Command | Qt::Key_S, save},
    {"File", "saveAs", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Save As…"), Command | Shift | Qt::Key_S,
     saveAs},
    {"File", "export", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Export (PNG, JPEG, TIFF, PSD)…"),
     Command | Qt::Key_E, sheet<PaintSheet::Kind::exportPicture>},
    {"File", nullptr},
    {"File", "importBrushes", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Import Brushes…"), 0,
     call<&PaintModel::brushes, &Brushes::importBrushes>},
    {"File", "exportBrushes", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Export Brushes…"), 0,
     call<&PaintModel::brushes, &Brushes::exportBrushes>},
    {"File", "importPalette", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Import Palettes…"), 0,
     call<&PaintModel::palettes, &Palettes::importPalette>},
    {"File", "exportGpl", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Export Palette as .gpl…"), 0,
     [](PaintModel& model) { model.palettes().exportPalette(Palettes::PaletteFile::gpl); }},
    {"File", "exportAco", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Export Palette as .aco…"), 0,
     [](PaintModel& model) { model.palettes().exportPalette(Palettes::PaletteFile::aco); }},
    {"File", nullptr},
    {.menu = "File",
     .name = "quit",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Quit"),
     .key = Command | Qt::Key_Q,
     .run = [](QWidget& window) { window.close(); },
     .isForLeaving = true},

    {.menu = "Edit",
     .name = "undo",
     .key = Command | Qt::Key_Z,
     .run = call<&PaintModel::undo>,
     .liveTitle = undoTitle,
     .inText = Typing::TextAction::undo},
    {.menu = "Edit",
     .name = "redo",
     .key = Command | Shift | Qt::Key_Z,
     .run = call<&PaintModel::redo>,
     .liveTitle = redoTitle,
     .secondKeys = {Command | Qt::Key_Y},
     .inText = Typing::TextAction::redo},
    {"Edit", nullptr},
    {.menu = "Edit",
     .name = "cut",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Cut"),
     .key = Command | Qt::Key_X,
     .run = call<&PaintModel::clipboard, &Clipboard::cut>,
     .inText = Typing::TextAction::cut},
    {.menu = "Edit",
     .name = "copy",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Copy"),
     .key = Command | Qt::Key_C,
     .run = [](PaintModel& model) { model.clipboard().copy(Merged::no); },
     .inText = Typing::TextAction::copy},
    {"Edit", "copyMerged", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Copy Merged"),
     Command | Shift | Qt::Key_C, [](PaintModel& model) { model.clipboard().copy(Merged::yes); }},
    {.menu = "Edit",
     .name = "paste",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Paste as New Layer"),
     .key = Command | Qt::Key_V,
     .run = call<&PaintModel::clipboard, &Clipboard::paste>,
     .inText = Typing::TextAction::paste},
    {"Edit", nullptr},
    {"Edit", "fillPrimary", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Fill with Paint Color"),
     Option | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().primary()); }},
    {"Edit", "fillSecondary", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Fill with Second Color"),
     Command | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().secondary()); }},
    {"Edit", "clear", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Clear (Delete Pixels)"), 0,
     LayerEdits::clearLayer},
    {"Edit", nullptr},
    {"Edit", "freeTransform", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Free Transform"), Command | Qt::Key_T,
     call<&PaintModel::transform, &PendingTransform::beginTransform>},
    {"Edit", "applyTransform", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Apply Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::applyTransform>, nullptr, nullptr, transformPending},
    {"Edit", "cancelTransform", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Cancel Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::cancelTransform>, nullptr, nullptr, transformPending},

    {.menu = "Select",
     .name = "selectAll",
     .title = QT_TRANSLATE_NOOP("qirn::PaintCommands", "Select All"),
     .key = Command | Qt::Key_A,
     .run = CanvasEdits::selectAll,
     .inText = Typing::TextAction::selectAll},
    {"Select", "deselect", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Deselect"), Command | Qt::Key_D,
     CanvasEdits::deselect},
    {"Select", "invertSelection", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Invert Selection"),
     Command | Option | Qt::Key_I, CanvasEdits::invertSelection},
    {"Select", nullptr},
    {"Select", "selectRect", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Rectangle Select (M)"), 0,
     [](PaintModel& model) { model.setTool(Tool::selectRect); }},
    {"Select", "selectEllipse", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Ellipse Select (O)"), 0,
     [](PaintModel& model) { model.setTool(Tool::selectEllipse); }},
    {"Select", "lasso", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Lasso Select (L)"), 0,
     [](PaintModel& model) { model.setTool(Tool::lasso); }},
    {"Select", "crop", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Crop to Selection"), 0,
     CanvasEdits::cropToSelection},

    {"Image", "imageSize", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Image Size…"),
     Command | Control | Qt::Key_I, sheet<PaintSheet::Kind::imageSize>},
    {"Image", "canvasSize", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas Size…"),
     Command | Control | Qt::Key_C, sheet<PaintSheet::Kind::canvasSize>},
    {"Image", nullptr},
    {"Image", "rotateClockwise", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Rotate 90° Clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 1); }},
    {"Image", "rotateCounterClockwise",
     QT_TRANSLATE_NOOP("qirn::PaintCommands", "Rotate 90° Counter-clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 3); }},
    {"Image", "rotateHalf", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Rotate 180°"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 2); }},
    {"Image", "flipHorizontal", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Flip Canvas Horizontal"), 0,
     CanvasEdits::flipCanvasHorizontal},
    {"Image", "flipVertical", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Flip Canvas Vertical"), 0,
     CanvasEdits::flipCanvasVertical},
    {"Image", nullptr},
    {"Image", "flatten", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Flatten Image"), 0, LayerEdits::flatten},

    {"Layer", "newLayer", QT_TRANSLATE_NOOP("qirn::PaintCommands", "New Layer"), Command | Shift | Qt::Key_N,
     LayerEdits::addLayer},
    {"Layer", "duplicateLayer", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Duplicate Layer"),
     Command | Qt::Key_J, LayerEdits::duplicateLayer},
    {"Layer", "deleteLayer", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Delete Layer"), 0,
     LayerEdits::deleteLayer},
    {"Layer", nullptr},
    {"Layer", "moveLayerUp", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Move Layer Up"),
     Command | Qt::Key_BracketRight, LayerEdits::moveLayerUp},
    {"Layer", "moveLayerDown", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Move Layer Down"),
     Command | Qt::Key_BracketLeft, LayerEdits::moveLayerDown},
    {"Layer", "mergeDown", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Merge Down"),
     Command | Option | Qt::Key_E, LayerEdits::mergeDown},
    {"Layer", "mergeVisible", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Merge Visible"),
     Command | Shift | Qt::Key_E, LayerEdits::mergeVisible},
    {"Layer", nullptr},
    {"Layer", "clip", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Clip to Layer Below"),
     Command | Option | Qt::Key_G, LayerEdits::toggleClipping},
    {"Layer", "lock", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Lock / Unlock Layer"), 0,
     LayerEdits::toggleLock},
    {"Layer", "alphaLock", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Alpha Lock On / Off"), 0,
     LayerEdits::toggleAlphaLock},
    {"Layer", "showHide", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Show / Hide Layer"), 0,
     LayerEdits::toggleVisibility},
    {"Layer", nullptr},
    {"Layer", "onionSkin", nullptr, Command | Option | Qt::Key_K, LayerEdits::toggleOnion, onionTitle},

    {"View", "zoomIn", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Zoom In  (= key)"),
     Command | Option | Qt::Key_Equal, [](CanvasView& view) { view.zoomStep(true); }},
    {"View", "zoomOut", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Zoom Out  (− key)"),
     Command | Option | Qt::Key_Minus, [](CanvasView& view) { view.zoomStep(false); }},
    {"View", "fit", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Fit in Window  (F)"),
     Command | Option | Qt::Key_0, [](CanvasView& view) { view.fit(); }},
    {"View", "actualPixels", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Actual Pixels 100%  (1)"),
     Command | Option | Qt::Key_1, [](CanvasView& view) { view.actualPixels(); }},
    {"View", nullptr},
    {"View", "rotateLeft", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Rotate Left 15°  (,)"), 0,
     [](CanvasView& view) { view.rotateView(-15); }},
    {"View", "rotateRight", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Rotate Right 15°  (.)"), 0,
     [](CanvasView& view) { view.rotateView(15); }},
    {"View", "resetRotation", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Reset Rotation  (/)"), 0,
     [](CanvasView& view) { view.setRotation(0); }},
    {"View", "flipView", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Canvas: Flip View (mirror check)  (W)"), 0,
     [](CanvasView& view) { view.toggleFlipView(); }},
    {"View", nullptr},
    {"View", "showPerformance", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Show Stroke Performance"), 0,
     togglePerformance, nullptr, [](const PaintModel& model) { return model.prefs().showPerformance; }},
};

} // namespace

std::span<const CommandRow> commandRows() {
    return kCommands;
}

const CommandRow& commandNamed(const char* name) {
    const auto rows = commandRows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const CommandRow& row) { return qstrcmp(row.name, name) == 0; });
    require(found != rows.end());
    return *found;
}

QString titleOf(const CommandRow& row, const PaintModel& model) {
    return row.liveTitle ? row.liveTitle(model) : PaintCommands::tr(row.title);
}

bool isEnabled(const CommandRow& row, const PaintModel& model) {
    if (model.sheet()) return row.inText || row.isForLeaving;
    return !row.enabled || row.enabled(model);
}

void runCommand(const CommandRow& row, PaintModel& model, CanvasView& view) {
    if (!isEnabled(row, model)) return;
    if (model.sheet() && row.inText) {
        Typing::act(*row.inText);
        return;
    }
    if (row.run.onModel) row.run.onModel(model);
    if (row.run.onView) row.run.onView(view);
    if (row.run.onWindow) row.run.onWindow(*view.window());
}

} // namespace qirn

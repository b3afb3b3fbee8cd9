#include "app/commands/PaintCommands.h"

#include "app/canvas/CanvasView.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Clipboard.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "app/model/PendingTransform.h"

#include <type_traits>

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace qirn {

namespace {

using Shortcut = int; // a key with modifiers, 0 for none
constexpr int Command = Qt::CTRL, Shift = Qt::SHIFT, Option = Qt::ALT;

/// What a command does: to the model, or to the view of the canvas.
struct CommandBody {
    void (*onModel)(PaintModel&) = nullptr;
    void (*onView)(CanvasView&) = nullptr;

    constexpr CommandBody() = default;
    template <class Function>
    constexpr CommandBody(Function function) { // NOLINT(google-explicit-constructor)
        if constexpr (std::is_convertible_v<Function, void (*)(PaintModel&)>)
            onModel = function;
        else
            onView = function;
    }
};

struct CommandRow {
    const char* menu; ///< The menu it stands in; rows of one menu stand together.
    const char* name; ///< Object name of the action; null for a divider.
    const char* title = nullptr;
    Shortcut shortcut = 0;
    CommandBody run = {};
    QString (*liveTitle)(const PaintModel&) = nullptr; ///< In place of `title`, asked at each change.
    bool (*checked)(const PaintModel&) = nullptr;      ///< Makes the item checkable.
    bool (*enabled)(const PaintModel&) = nullptr;      ///< Always, where there is none.
};

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

template <PaintSheet kSheet> void sheet(PaintModel& model) {
    model.requestSheet(kSheet);
}

void save(PaintModel& model) {
    model.pictures().save(nullptr, OpenPictures::SaveAs::no);
}
void saveAs(PaintModel& model) {
    model.pictures().save(nullptr, OpenPictures::SaveAs::yes);
}

constexpr const char* kQuit = "quit";

// The menu bar, in order.
const CommandRow kCommands[] = {
    {"File", "newCanvas", QT_TRANSLATE_NOOP("qirn::PaintCommands", "New Canvas"), Command | Qt::Key_N,
     call<&PaintModel::pictures, &OpenPictures::newCanvas>},
    {"File", "open", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Open…"), Command | Qt::Key_O,
     call<&PaintModel::pictures, &OpenPictures::openPanel>},
    {"File", "importLayer", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Import Picture as Layer…"),
     Command | Shift | Qt::Key_I, call<&PaintModel::clipboard, &Clipboard::importImageAsLayer>},
    {"File", "recover", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Recover Autosaved Work…"), 0,
     sheet<PaintSheet::recovery>},
    {"File", nullptr},
    {"File", "closePicture", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Close Picture"), Command | Qt::Key_W,
     call<&PaintModel::pictures, &OpenPictures::closeCurrent>},
    {"File", "save", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Save"), Command | Qt::Key_S, save},
    {"File", "saveAs", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Save As…"), Command | Shift | Qt::Key_S,
     saveAs},
    {"File", "export", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Export (PNG, JPEG, TIFF, PSD)…"),
     Command | Qt::Key_E, sheet<PaintSheet::exportPicture>},
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
    {"File", kQuit, QT_TRANSLATE_NOOP("qirn::PaintCommands", "Quit"), Command | Qt::Key_Q},

    {"Edit", "undo", nullptr, Command | Qt::Key_Z, call<&PaintModel::undo>, undoTitle},
    {"Edit", "redo", nullptr, Command | Shift | Qt::Key_Z, call<&PaintModel::redo>, redoTitle},
    {"Edit", nullptr},
    {"Edit", "cut", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Cut"), Command | Qt::Key_X,
     call<&PaintModel::clipboard, &Clipboard::cut>},
    {"Edit", "copy", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Copy"), Command | Qt::Key_C,
     [](PaintModel& model) { model.clipboard().copy(Merged::no); }},
    {"Edit", "copyMerged", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Copy Merged"),
     Command | Shift | Qt::Key_C, [](PaintModel& model) { model.clipboard().copy(Merged::yes); }},
    {"Edit", "paste", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Paste as New Layer"), Command | Qt::Key_V,
     call<&PaintModel::clipboard, &Clipboard::paste>},
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

    {"Select", "selectAll", QT_TRANSLATE_NOOP("qirn::PaintCommands", "Select All"), Command | Qt::Key_A,
     CanvasEdits::selectAll},
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

const char* kMenuTitles[] = {
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "File"),   QT_TRANSLATE_NOOP("qirn::PaintCommands", "Edit"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Select"), QT_TRANSLATE_NOOP("qirn::PaintCommands", "Image"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Layer"),  QT_TRANSLATE_NOOP("qirn::PaintCommands", "View")};

/// A menu takes "&" for the mark of an access key.
QString plainTitle(QString title) {
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace

PaintCommands::PaintCommands(PaintModel& model, CanvasView& view, QMenuBar& menuBar)
    : QObject(&menuBar),
      model_(model) {
    for (const char* menuTitle : kMenuTitles) {
        QMenu* menu = menuBar.addMenu(QStringLiteral("&") + tr(menuTitle));
        menu->setObjectName(QLatin1String(menuTitle));
        for (const CommandRow& row : kCommands) {
            if (qstrcmp(row.menu, menuTitle) != 0) continue;
            if (!row.name) {
                menu->addSeparator();
                continue;
            }
            QAction* action = menu->addAction(QString());
            action->setObjectName(QLatin1String(row.name));
            if (row.title) action->setText(plainTitle(tr(row.title)));
            if (row.shortcut != 0) action->setShortcut(QKeySequence(row.shortcut));
            action->setCheckable(row.checked != nullptr);
            connect(action, &QAction::triggered, this, guarding(model_, [this, &view, run = row.run] {
                        if (run.onModel) run.onModel(model_);
                        if (run.onView) run.onView(view);
                    }));
        }
    }
    connect(action(QLatin1String(kQuit)), &QAction::triggered, menuBar.window(), &QWidget::close);
    connect(&model, &PaintModel::changed, this, &PaintCommands::refresh);
    refresh();
}

QAction* PaintCommands::action(const QString& objectName) const {
    return parent()->findChild<QAction*>(objectName);
}

void PaintCommands::refresh() {
    for (const CommandRow& row : kCommands) {
        if (!row.liveTitle && !row.checked && !row.enabled) continue;
        QAction* item = action(QLatin1String(row.name));
        if (row.liveTitle) item->setText(plainTitle(row.liveTitle(model_)));
        if (row.checked) item->setChecked(row.checked(model_));
        if (row.enabled) item->setEnabled(row.enabled(model_));
    }
}

} // namespace qirn

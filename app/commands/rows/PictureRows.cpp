#include "app/commands/rows/MenuRows.h"

#include "app/commands/PaintCommands.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"

namespace qirn::MenuRows {

namespace {

QString onionTitle(const PaintModel& model) {
    const bool on = model.current() && model.current()->doc().onion.enabled;
    return on ? PaintCommands::tr("Turn Onion Skin Off") : PaintCommands::tr("Turn Onion Skin On");
}

const CommandRow kRows[] = {
    {"Image", "imageSize", QIRN_TITLE("Image Size…"), Command | Control | Qt::Key_I,
     sheet<PaintSheet::Kind::imageSize>},
    {"Image", "canvasSize", QIRN_TITLE("Canvas Size…"), Command | Control | Qt::Key_C,
     sheet<PaintSheet::Kind::canvasSize>},
    {"Image", nullptr},
    {"Image", "rotateClockwise", QIRN_TITLE("Rotate 90° Clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 1); }},
    {"Image", "rotateCounterClockwise", QIRN_TITLE("Rotate 90° Counter-clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 3); }},
    {"Image", "rotateHalf", QIRN_TITLE("Rotate 180°"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 2); }},
    {"Image", "flipHorizontal", QIRN_TITLE("Flip Canvas Horizontal"), 0, CanvasEdits::flipCanvasHorizontal},
    {"Image", "flipVertical", QIRN_TITLE("Flip Canvas Vertical"), 0, CanvasEdits::flipCanvasVertical},
    {"Image", nullptr},
    {"Image", "flatten", QIRN_TITLE("Flatten Image"), 0, LayerEdits::flatten},

    {"Layer", "newLayer", QIRN_TITLE("New Layer"), Command | Shift | Qt::Key_N, LayerEdits::addLayer},
    {"Layer", "duplicateLayer", QIRN_TITLE("Duplicate Layer"), Command | Qt::Key_J,
     LayerEdits::duplicateLayer},
    {"Layer", "deleteLayer", QIRN_TITLE("Delete Layer"), 0, LayerEdits::deleteLayer},
    {"Layer", nullptr},
    {.menu = "Layer",
     .name = "moveLayerUp",
     .title = QIRN_TITLE("Move Layer Up"),
     .key = Command | Qt::Key_BracketRight,
     .run = LayerEdits::moveLayerUp,
     .secondKeys = {Command | Shift | Qt::Key_PageUp}},
    {.menu = "Layer",
     .name = "moveLayerDown",
     .title = QIRN_TITLE("Move Layer Down"),
     .key = Command | Qt::Key_BracketLeft,
     .run = LayerEdits::moveLayerDown,
     .secondKeys = {Command | Shift | Qt::Key_PageDown}},
    {"Layer", "mergeDown", QIRN_TITLE("Merge Down"), Command | Option | Qt::Key_E, LayerEdits::mergeDown},
    {"Layer", "mergeVisible", QIRN_TITLE("Merge Visible"), Command | Shift | Qt::Key_E,
     LayerEdits::mergeVisible},
    {"Layer", nullptr},
    {"Layer", "clip", QIRN_TITLE("Clip to Layer Below"), Command | Option | Qt::Key_G,
     LayerEdits::toggleClipping},
    {"Layer", "lock", QIRN_TITLE("Lock / Unlock Layer"), 0, LayerEdits::toggleLock},
    {"Layer", "alphaLock", QIRN_TITLE("Alpha Lock On / Off"), 0, LayerEdits::toggleAlphaLock},
    {"Layer", "showHide", QIRN_TITLE("Show / Hide Layer"), 0, LayerEdits::toggleVisibility},
    {"Layer", nullptr},
    {"Layer", "onionSkin", QIRN_TITLE("Turn Onion Skin On / Off"), Command | Option | Qt::Key_K,
     LayerEdits::toggleOnion, onionTitle},
};

} // namespace

std::span<const CommandRow> picture() {
    return kRows;
}

} // namespace qirn::MenuRows

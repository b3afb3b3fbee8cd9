// Choices, colours and messages; the other subjects of the model have files of their own.
#include "app/model/PaintModel.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/Desktop.h"
#include "app/desktop/Store.h"
#include "app/model/Guarded.h"
#include "formats/palettes/PaletteLibrary.h"

#include <algorithm>

namespace qirn {

PaintModel* PaintModel::shared = nullptr;

PaintModel::PaintModel(LoadStores stores, Desktop& desktop, Store& store)
    : desktop_(desktop),
      store_(store),
      userBrushFile_(AppFolders::brushesFile()),
      userPaletteFile_(AppFolders::palettesFile()),
      paletteID_(PaletteLibrary::builtIn().front().id),
      prefs_(PaintPrefs::load(store)) {
    for (const ToolRow& row : kTools) {
        if (row.usesBrush) toolBrush_.emplace(row.tool, defaultBrush(row.tool));
    }
    hudTimer_.setSingleShot(true);
    connect(&hudTimer_, &QTimer::timeout, this, guarding(*this, [this] {
        hud_.reset();
        announce();
    }));
    stateTimer_.setSingleShot(true);
    connect(&stateTimer_, &QTimer::timeout, this, guarding(*this, [this] { saveState(); }));
    connect(&autosaveTimer_, &QTimer::timeout, this, guarding(*this, [this] { autosaveTick(); }));
    if (stores == LoadStores::yes) loadState();
}

PaintModel::~PaintModel() {
    if (shared == this) shared = nullptr;
}

void PaintModel::setCanvas(CanvasPort* canvas) {
    canvas_ = canvas ? canvas : &noCanvas_;
    if (current()) canvas_->showSession(*current());
}

DocSession* PaintModel::current() const {
    const auto found = std::find_if(sessions_.begin(), sessions_.end(),
                                    [&](const SessionRef& s) { return s->id == currentID_; });
    if (found != sessions_.end()) return found->get();
    return sessions_.empty() ? nullptr : sessions_.front().get();
}

// --- Tool and colours

void PaintModel::setTool(Tool tool) {
    if (tool == tool_) return;
    if (tool_ == Tool::move)
        finishGesture(); // leaving the Move tool puts the pixels down
    else
        canvas_->endStroke();
    tool_ = tool;
    canvas_->choicesChanged();
    saveStateLater();
    announce();
}

void PaintModel::setPrimary(const PaintColor& color) {
    primary_ = PaintColor(color.r, color.g, color.b);
    saveStateLater();
    announce();
}

void PaintModel::pick(const PaintColor& color, AddRecent addRecent) {
    setPrimary(color);
    if (addRecent == AddRecent::yes) pushRecent(primary_);
}

void PaintModel::pushRecent(const PaintColor& color) {
    std::vector<PaintColor> longer = withRecent(recent_, color);
    if (longer == recent_) return;
    recent_ = std::move(longer);
    saveStateLater();
    announce();
}

void PaintModel::swapColors() {
    std::swap(primary_, secondary_);
    saveStateLater();
    announce();
}

void PaintModel::defaultColors() {
    primary_ = PaintColor::black();
    secondary_ = PaintColor::white();
    saveStateLater();
    announce();
}

void PaintModel::setOptions(const ToolOptions& options) {
    if (options == options_) return;
    options_ = options;
    saveStateLater();
    announce();
}

void PaintModel::setPrefs(const PaintPrefs& prefs) {
    if (prefs == prefs_) return;
    prefs_ = prefs;
    prefs_.save(store_);
    applyPrefs();
    announce();
}

void PaintModel::applyPrefs() {
    for (const SessionRef& session : sessions_) session->doc().maxUndoSteps = prefs_.undoSteps;
    canvas_->choicesChanged();
}

// --- Messages

void PaintModel::flash(const QString& text) {
    hud_ = text;
    hudTimer_.start(messageTime);
    announce();
}

void PaintModel::alert(const QString& title, const QString& text) {
    desktop_.ask(title, text, {tr("OK")}, 0);
}

void PaintModel::takeBack(const QString& why) {
    transform_.reset();
    opacityPreview_.reset();
    DocSession* const session = current();
    contained([&] {
        if (!session) return;
        PaintDocument& doc = session->doc();
        const QUuid active = doc.activeLayer().id;
        doc.revertToLastCommit();
        if (const auto index = doc.indexOf(active)) doc.setActiveIndex(*index);
    });
    contained([&] { canvas_->dropUncommitted(); });
    if (session) session->announceChange();
    flash(why);
}

bool PaintModel::confirm(const QString& title, const QString& text) {
    return desktop_.ask(title, text, {tr("OK"), tr("Cancel")}, 1) == 0;
}

} // namespace qirn

// Choices, colours, brushes and messages; the other subjects of the model have files of their own.
#include "PaintModel.h"

#include "AppFolders.h"
#include "CanvasView.h"
#include "Defaults.h"
#include "Desktop.h"
#include "brush/BrushLibrary.h"

#include <algorithm>

namespace qirn {

namespace {

constexpr int kMessageTime = 2600; // milliseconds

BrushKind kindOf(Tool tool) {
    switch (tool) {
    case Tool::eraser:
        return BrushKind::erase;
    case Tool::smudge:
        return BrushKind::smudge;
    case Tool::blur:
        return BrushKind::blur;
    default:
        return BrushKind::paint;
    }
}

Tool toolOf(BrushKind kind) {
    switch (kind) {
    case BrushKind::erase:
        return Tool::eraser;
    case BrushKind::smudge:
        return Tool::smudge;
    case BrushKind::blur:
        return Tool::blur;
    default:
        return Tool::brush;
    }
}

BrushSettings sanitized(BrushSettings brush) {
    brush.sanitize();
    return brush;
}

} // namespace

PaintModel* PaintModel::shared = nullptr;

PaintModel::PaintModel(LoadStores stores, Desktop& desktop, Defaults& defaults)
    : desktop_(desktop),
      defaults_(defaults),
      userBrushFile_(AppFolders::brushesFile()),
      prefs_(PaintPrefs::load(defaults)) {
    for (const ToolRow& row : kTools) {
        if (row.usesBrush) toolBrush_.emplace(row.tool, defaultBrush(row.tool));
    }
    hudTimer_.setSingleShot(true);
    connect(&hudTimer_, &QTimer::timeout, this, [this] {
        hud_.reset();
        announce();
    });
    stateTimer_.setSingleShot(true);
    connect(&stateTimer_, &QTimer::timeout, this, &PaintModel::saveState);
    connect(&autosaveTimer_, &QTimer::timeout, this, &PaintModel::autosaveTick);
    if (stores == LoadStores::yes) loadState();
}

PaintModel::~PaintModel() {
    if (shared == this) shared = nullptr;
}

CanvasView* PaintModel::canvas() const {
    return canvas_;
}

void PaintModel::setCanvas(CanvasView* canvas) {
    canvas_ = canvas;
    if (canvas_ && current()) canvas_->showSession(*current());
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
    else if (canvas_)
        canvas_->endStroke();
    tool_ = tool;
    if (canvas_) canvas_->toolDidChange();
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
    prefs_.save(defaults_);
    applyPrefs();
    announce();
}

void PaintModel::applyPrefs() {
    for (const SessionRef& session : sessions_) session->doc().maxUndoSteps = prefs_.undoSteps;
    if (canvas_) canvas_->prefsChanged();
}

// --- Brushes

Tool PaintModel::brushTool() const {
    return rowOf(tool_).usesBrush ? tool_ : Tool::brush;
}

BrushSettings PaintModel::defaultBrush(Tool tool) {
    const char* name = tool == Tool::eraser   ? "Hard Eraser"
                       : tool == Tool::smudge ? "Smudge"
                       : tool == Tool::blur   ? "Blur"
                                              : "Studio Pen";
    return *BrushLibrary::named(QLatin1String(name));
}

const BrushSettings& PaintModel::activeBrush() const {
    return toolBrush_.at(brushTool());
}

void PaintModel::setActiveBrush(const BrushSettings& brush) {
    setToolBrush(brushTool(), brush);
}

void PaintModel::setToolBrush(Tool tool, const BrushSettings& brush) {
    toolBrush_.insert_or_assign(tool, sanitized(brush));
    if (canvas_) canvas_->brushChanged();
    saveStateLater();
    announce();
}

std::vector<BrushSettings> PaintModel::allBrushes() const {
    std::vector<BrushSettings> all = BrushLibrary::builtIn();
    all.insert(all.end(), userBrushes_.begin(), userBrushes_.end());
    return all;
}

std::vector<BrushSettings> PaintModel::brushesFor(Tool tool) const {
    std::vector<BrushSettings> brushes = allBrushes();
    std::erase_if(brushes, [kind = kindOf(tool)](const BrushSettings& brush) { return brush.kind != kind; });
    return brushes;
}

void PaintModel::choose(const BrushSettings& preset) {
    const Tool tool = toolOf(preset.kind);
    setToolBrush(tool, preset);
    setTool(tool);
}

std::optional<BrushSettings> PaintModel::savedPreset(const BrushSettings& brush) const {
    for (const BrushSettings& preset : allBrushes()) {
        if (preset.id == brush.id) return preset;
    }
    return std::nullopt;
}

void PaintModel::resetBrush() {
    if (const auto preset = savedPreset(activeBrush())) setActiveBrush(*preset);
}

void PaintModel::saveBrushAsNew(const QString& name) {
    BrushSettings copy = activeBrush();
    copy.id = QUuid::createUuid();
    copy.name = name.isEmpty() ? tr("My Brush") : name;
    copy.category = QLatin1String(kUserBrushCategory);
    copy.isBuiltIn = false;
    userBrushes_.push_back(copy);
    saveUserBrushes();
    setActiveBrush(copy);
    flash(tr("Saved brush \"%1\"").arg(copy.name));
}

void PaintModel::updateUserBrush() {
    const auto same = [&](const BrushSettings& brush) { return brush.id == activeBrush().id; };
    const auto found = std::find_if(userBrushes_.begin(), userBrushes_.end(), same);
    if (found == userBrushes_.end()) return;
    *found = activeBrush();
    saveUserBrushes();
    flash(tr("Updated \"%1\"").arg(found->name));
}

void PaintModel::deleteUserBrush(const BrushSettings& preset) {
    if (!confirm(tr("Delete the brush \"%1\"?").arg(preset.name),
                 tr("Only this brush preset is removed. Your pictures are not changed."))) {
        return;
    }
    const bool active = activeBrush().id == preset.id;
    std::erase_if(userBrushes_, [id = preset.id](const BrushSettings& brush) { return brush.id == id; });
    saveUserBrushes();
    if (active) setActiveBrush(defaultBrush(brushTool()));
    announce();
}

void PaintModel::saveUserBrushes() {
    userBrushFile_.save(userBrushes_);
}

// --- Messages

void PaintModel::flash(const QString& text) {
    hud_ = text;
    hudTimer_.start(kMessageTime);
    announce();
}

void PaintModel::alert(const QString& title, const QString& text) {
    desktop_.ask(title, text, {tr("OK")}, 0);
}

bool PaintModel::confirm(const QString& title, const QString& text) {
    return desktop_.ask(title, text, {tr("OK"), tr("Cancel")}, 1) == 0;
}

} // namespace qirn

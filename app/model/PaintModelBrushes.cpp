// The brush of each tool, the user's own presets, and brush files.
#include "app/model/PaintModel.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/ReadFile.h"

#include <algorithm>

namespace qirn {

namespace {

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
    canvas_->choicesChanged();
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

// --- Brush files

void PaintModel::exportBrushes() {
    const QList<FileType> types{FileTypes::brushes().front()};
    const auto path = desktop_.saveFile(tr("My Qirn Paint Brushes.qirnbrushes"), types, {});
    if (!path) return;
    const std::vector<BrushSettings> brushes =
        userBrushes_.empty() ? std::vector<BrushSettings>{activeBrush()} : userBrushes_;
    try {
        writeAtomically(*path, bytesOf(BrushFile::encode(brushes)));
    } catch (const DescribedError& error) {
        return alert(tr("Couldn't export brushes"), error.description());
    }
    flash(tr("Exported %1 brush(es)").arg(brushes.size()));
}

void PaintModel::importBrushes() {
    const QStringList paths = desktop_.openFiles(FileTypes::brushes(), Desktop::Several::no);
    if (paths.isEmpty()) return;
    std::optional<std::vector<BrushSettings>> brushes;
    try {
        brushes = brushesToImport(bytesOf(readFile(paths.front())));
    } catch (const ReadError&) {
        // Told below: to the user it is no brush file either.
    }
    if (!brushes)
        return alert(tr("Couldn't import brushes"), tr("This file isn't an Qirn Paint brush file."));
    userBrushes_.insert(userBrushes_.end(), brushes->begin(), brushes->end());
    saveUserBrushes();
    flash(tr("Imported %1 brush(es)").arg(brushes->size()));
}

} // namespace qirn

#include "app/model/Brushes.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/Store.h"
#include "app/files/BrushPreviewCache.h"
#include "app/model/CanvasPort.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"

#include <algorithm>

namespace qirn {

namespace {

const QString kToolBrushesKey = QStringLiteral("qirn.pt.toolBrushes");

/// The brush of each tool that has one; nothing when the record as a whole does not decode.
std::optional<std::map<Tool, BrushSettings>> decodeToolBrushes(const Json& record) {
    if (!record.is_object()) return std::nullopt;
    std::map<Tool, BrushSettings> brushes;
    try {
        for (const auto& [id, brush] : record.items()) {
            const std::optional<Tool> tool = toolWithId(QString::fromStdString(id));
            const BrushSettings decoded = BrushSettings::fromJson(brush);
            if (tool && rowOf(*tool).usesBrush()) brushes.insert_or_assign(*tool, decoded);
        }
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
    return brushes;
}

Tool toolOf(BrushKind kind) {
    for (const ToolRow& row : kTools) {
        if (row.usesBrush() && row.brushKind == kind) return row.tool;
    }
    return Tool::brush;
}

BrushSettings sanitized(BrushSettings brush) {
    brush.sanitize();
    return brush;
}

} // namespace

Brushes::Brushes(PaintModel& model)
    : model_(model),
      userBrushes_(AppFolders::brushesFile()),
      previews_(std::make_unique<BrushPreviewCache>()) {
    userBrushes_.onArrival = [this] { model_.announce(); };
    for (const ToolRow& row : kTools) {
        if (row.usesBrush()) toolBrush_.emplace(row.tool, defaultBrush(row.tool));
    }
}

Brushes::~Brushes() = default;

void Brushes::load(const Store& store) {
    userBrushes_.load();
    const Json* record = store.json(kToolBrushesKey);
    const auto brushes = record ? decodeToolBrushes(*record) : std::nullopt;
    if (!brushes) return;
    for (const auto& [tool, brush] : *brushes) toolBrush_.insert_or_assign(tool, brush);
}

void Brushes::save(Store& store) const {
    OrderedJson brushes = OrderedJson::object();
    for (const auto& [tool, brush] : toolBrush_) brushes[rowOf(tool).id] = brush.toJson();
    store.keep(kToolBrushesKey, brushes);
}

Tool Brushes::brushTool() const {
    return rowOf(model_.tool()).usesBrush() ? model_.tool() : Tool::brush;
}

BrushSettings Brushes::defaultBrush(Tool tool) {
    return *BrushLibrary::named(QLatin1String(rowOf(tool).preset));
}

const BrushSettings& Brushes::activeBrush() const {
    return toolBrush_.at(brushTool());
}

void Brushes::setActiveBrush(const BrushSettings& brush) {
    setToolBrush(brushTool(), brush);
}

void Brushes::setToolBrush(Tool tool, const BrushSettings& brush) {
    toolBrush_.insert_or_assign(tool, sanitized(brush));
    model_.canvas().choicesChanged();
    model_.choiceChanged();
}

std::vector<BrushSettings> Brushes::allBrushes() const {
    std::vector<BrushSettings> all = BrushLibrary::builtIn();
    all.insert(all.end(), userBrushes_->begin(), userBrushes_->end());
    return all;
}

std::vector<BrushSettings> Brushes::brushesFor(Tool tool) const {
    std::vector<BrushSettings> brushes = allBrushes();
    std::erase_if(brushes,
                  [kind = rowOf(tool).brushKind](const BrushSettings& brush) { return brush.kind != kind; });
    return brushes;
}

void Brushes::choose(const BrushSettings& preset) {
    const Tool tool = toolOf(preset.kind);
    setToolBrush(tool, preset);
    model_.setTool(tool);
}

std::optional<BrushSettings> Brushes::savedPreset(const BrushSettings& brush) const {
    for (const BrushSettings& preset : allBrushes()) {
        if (preset.id == brush.id) return preset;
    }
    return std::nullopt;
}

void Brushes::resetBrush() {
    if (const auto preset = savedPreset(activeBrush())) setActiveBrush(*preset);
}

void Brushes::saveBrushAsNew(const QString& name) {
    BrushSettings copy = activeBrush();
    copy.id = QUuid::createUuid();
    copy.name = name.isEmpty() ? tr("My Brush") : name;
    copy.category = QLatin1String(kUserBrushCategory);
    copy.isBuiltIn = false;
    userBrushes_.edit().push_back(copy);
    userBrushes_.write();
    setActiveBrush(copy);
    model_.messages().flash(tr("Saved brush \"%1\"").arg(copy.name));
}

void Brushes::updateUserBrush() {
    const auto same = [&](const BrushSettings& brush) { return brush.id == activeBrush().id; };
    auto& own = userBrushes_.edit();
    const auto found = std::find_if(own.begin(), own.end(), same);
    if (found == own.end()) return;
    *found = activeBrush();
    userBrushes_.write(); // after which others' may be in its place
    model_.messages().flash(tr("Updated \"%1\"").arg(activeBrush().name));
}

void Brushes::deleteUserBrush(const BrushSettings& preset) {
    if (!model_.messages().confirm(tr("Delete the brush \"%1\"?").arg(preset.name),
                                   tr("Only this brush preset is removed. Your pictures are not changed."))) {
        return;
    }
    const bool active = activeBrush().id == preset.id;
    std::erase_if(userBrushes_.edit(),
                  [id = preset.id](const BrushSettings& brush) { return brush.id == id; });
    userBrushes_.write();
    if (active) setActiveBrush(defaultBrush(brushTool()));
    model_.announce();
}

// --- Brush files

void Brushes::exportBrushes() {
    const QList<FileType> types{FileTypes::brushes().front()};
    const auto place =
        model_.desktop().saveFile({tr("Export"), tr("My Qirn Paint Brushes.qirnbrushes"), types});
    if (!place) return;
    const std::vector<BrushSettings> brushes =
        userBrushes_->empty() ? std::vector<BrushSettings>{activeBrush()} : *userBrushes_;
    try {
        writeAtomically(place->path, bytesOf(BrushFile::encode(brushes)));
    } catch (const DescribedError& error) {
        return model_.messages().alert(tr("Couldn't export brushes"), error.description());
    }
    model_.desktop().noteUsedFile(place->path);
    model_.messages().flash(tr("Exported %Ln brush(es)", nullptr, static_cast<int>(brushes.size())));
}

void Brushes::importBrushes() {
    const QStringList paths =
        model_.desktop().openFiles(tr("Import"), FileTypes::brushes(), Desktop::Several::no);
    if (paths.isEmpty()) return;
    std::optional<std::vector<BrushSettings>> brushes;
    try {
        brushes = brushesToImport(bytesOf(readFile(paths.front())));
    } catch (const ReadError&) {
        // Falls through to the alert below: unreadable and no brush file are the same to the user.
    }
    if (!brushes)
        return model_.messages().alert(tr("Couldn't import brushes"),
                                       tr("This file isn't an Qirn Paint brush file."));
    auto& own = userBrushes_.edit();
    own.insert(own.end(), brushes->begin(), brushes->end());
    userBrushes_.write();
    model_.desktop().noteUsedFile(paths.front());
    model_.messages().flash(tr("Imported %Ln brush(es)", nullptr, static_cast<int>(brushes->size())));
}

} // namespace qirn

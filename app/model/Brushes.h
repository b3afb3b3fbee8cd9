#pragma once
#include "app/files/UserBrushes.h"
#include "app/model/choices/Tool.h"
#include "brush/BrushSettings.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <QCoreApplication>
#include <QString>

namespace qirn {

class BrushPreviewCache;
class PaintModel;
class Store;

/// The active brush of each brush tool, and the presets: the built-in ones, which never change, and the user's own.
class Brushes {
    Q_DECLARE_TR_FUNCTIONS(qirn::Brushes)
public:
    explicit Brushes(PaintModel& model); ///< Borrowed for its life. Every tool has its built-in brush.
    ~Brushes();

    Tool brushTool() const; ///< The current tool, or Brush where that has no brush of its own.
    const BrushSettings& activeBrush() const;
    void setActiveBrush(const BrushSettings& brush); ///< Sanitised; written to the store later.
    static BrushSettings defaultBrush(Tool tool);

    std::vector<BrushSettings> allBrushes() const; ///< Built-in, then the user's.
    std::vector<BrushSettings> brushesFor(Tool tool) const;
    const std::vector<BrushSettings>& userBrushes() const { return *userBrushes_; }
    std::optional<BrushSettings> savedPreset(const BrushSettings& brush) const;
    BrushPreviewCache& previews() const { return *previews_; } ///< Of any brushes, for all views.

    void choose(const BrushSettings& preset); ///< Switches to the tool of the preset's kind.
    void resetBrush();
    void saveBrushAsNew(const QString& name);
    void updateUserBrush();
    void deleteUserBrush(const BrushSettings& preset); ///< Asks first.

    void exportBrushes(); ///< Writes the user's presets, or the active brush where there are none.
    void importBrushes();

    void load(const Store& store); ///< The tools' brushes, and the file of the user's presets.
    void save(Store& store) const; ///< The tools' brushes. Presets are written to their file at each change,
    void flush() { userBrushes_.flush(); } ///< in the background; this waits for it.

private:
    void setToolBrush(Tool tool, const BrushSettings& brush);

    PaintModel& model_;
    std::map<Tool, BrushSettings> toolBrush_;
    UserBrushFile userBrushes_;
    std::unique_ptr<BrushPreviewCache> previews_;
};

} // namespace qirn

#pragma once
#include "app/files/UserBrushes.h"
#include "app/model/Tool.h"
#include "brush/BrushSettings.h"

#include <map>
#include <optional>
#include <vector>

#include <QCoreApplication>
#include <QString>

namespace qirn {

class PaintModel;
class Store;

/// A brush for each tool that paints with one, and the presets: built-in ones, which stay as they are, and the user's own.
class Brushes {
    Q_DECLARE_TR_FUNCTIONS(qirn::Brushes)
public:
    explicit Brushes(PaintModel& model); ///< Borrowed for its life. Every tool has its built-in brush.

    Tool brushTool() const; ///< Tools without a brush edit the Brush tool's.
    const BrushSettings& activeBrush() const;
    void setActiveBrush(const BrushSettings& brush); ///< Sanitised; written to the store later.
    static BrushSettings defaultBrush(Tool tool);

    std::vector<BrushSettings> allBrushes() const; ///< Built-in, then the user's.
    std::vector<BrushSettings> brushesFor(Tool tool) const;
    const std::vector<BrushSettings>& userBrushes() const { return userBrushes_; }
    std::optional<BrushSettings> savedPreset(const BrushSettings& brush) const;

    void choose(const BrushSettings& preset); ///< Switches to the tool of the preset's kind.
    void resetBrush();
    void saveBrushAsNew(const QString& name);
    void updateUserBrush();
    void deleteUserBrush(const BrushSettings& preset); ///< Asks first.

    void exportBrushes(); ///< The user's presets; without any, the active brush.
    void importBrushes();

    void load(const Store& store); ///< The tools' brushes, and the file of the user's presets.
    void save(Store& store) const; ///< The tools' brushes; presets are in their file already.

private:
    void setToolBrush(Tool tool, const BrushSettings& brush);

    PaintModel& model_;
    std::map<Tool, BrushSettings> toolBrush_;
    std::vector<BrushSettings> userBrushes_;
    UserBrushFile file_;
};

} // namespace qirn

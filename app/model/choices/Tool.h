#pragma once
#include <array>
#include <cstdint>
#include <optional>

#include <QString>
#include <Qt>

namespace qirn {

enum class BrushKind : uint8_t;
enum class Icon;

/// What a press on the canvas does. The order is that of the tool rail.
enum class Tool : uint8_t {
    brush,
    eraser,
    smudge,
    blur,
    bucket,
    gradient,
    eyedropper,
    selectRect,
    selectEllipse,
    lasso,
    move,
    shape,
    text,
    hand,
    zoom,
};
inline constexpr int kToolCount = static_cast<int>(Tool::zoom) + 1;

/// A group of options that tools share: the options bar shows the rows of the current tool's group.
enum class OptionGroup : uint8_t { brush, fill, gradient, picking, selection, transform, shape, text, view };

/// All that is to be known of a tool beside its gesture (app/tools/) and the rows of its options.
struct ToolRow {
    Tool tool;
    const char* id;    ///< As the store keeps it, and the name of its button.
    const char* title; ///< English source text.
    char key;          ///< The letter that picks it on the canvas where the user chose none: see `keyOf`.
    Icon icon;
    const char* helpTopic;
    OptionGroup options;
    bool edits = false;                ///< Changes pixels.
    const char* undoName = nullptr;    ///< English source text; null where its steps have several names.
    bool picksWithOption = false;      ///< Option held at the press picks a color, as the Eyedropper does.
    BrushKind brushKind{};             ///< Of the presets that it offers.
    const char* preset = "Studio Pen"; ///< Its brush at first.
    Qt::CursorShape cursor = Qt::CrossCursor;
    Qt::CursorShape dragCursor = cursor; ///< While its gesture is in progress.

    /// Paints strokes with a brush of its own; others edit the Brush tool's.
    bool usesBrush() const { return options == OptionGroup::brush; }
};

extern const std::array<ToolRow, kToolCount> kTools; ///< In the order of `Tool`.

inline const ToolRow& rowOf(Tool tool) {
    return kTools[static_cast<std::size_t>(tool)];
}
QString toolTitle(Tool tool);  ///< In the user's language.
QString undoNameOf(Tool tool); ///< The same, of one that has such a name.
std::optional<Tool> toolWithId(const QString& id);

} // namespace qirn

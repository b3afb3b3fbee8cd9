#pragma once
#include <array>
#include <cstdint>
#include <optional>

#include <QString>

namespace qirn {

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

struct ToolRow {
    Tool tool;
    const char* id;    ///< As the store keeps it.
    const char* title; ///< English source text.
    char key;          ///< The plain letter that picks the tool on the canvas.
    const char* helpTopic;
    bool usesBrush;
    bool edits; ///< Changes pixels.
};

inline constexpr int kToolCount = 15;
inline constexpr std::array<ToolRow, kToolCount> kTools{{
    {Tool::brush, "brush", QT_TRANSLATE_NOOP("Tool", "Brush"), 'B', "brush", true, true},
    {Tool::eraser, "eraser", QT_TRANSLATE_NOOP("Tool", "Eraser"), 'E', "eraser", true, true},
    {Tool::smudge, "smudge", QT_TRANSLATE_NOOP("Tool", "Smudge"), 'S', "smudge-blur", true, true},
    {Tool::blur, "blur", QT_TRANSLATE_NOOP("Tool", "Blur"), 'R', "smudge-blur", true, true},
    {Tool::bucket, "bucket", QT_TRANSLATE_NOOP("Tool", "Bucket Fill"), 'G', "bucket", false, true},
    {Tool::gradient, "gradient", QT_TRANSLATE_NOOP("Tool", "Gradient"), 'D', "gradient", false, true},
    {Tool::eyedropper, "eyedropper", QT_TRANSLATE_NOOP("Tool", "Eyedropper"), 'I', "eyedropper", false,
     false},
    {Tool::selectRect, "selectRect", QT_TRANSLATE_NOOP("Tool", "Rectangle Select"), 'M', "selections", false,
     false},
    {Tool::selectEllipse, "selectEllipse", QT_TRANSLATE_NOOP("Tool", "Ellipse Select"), 'O', "selections",
     false, false},
    {Tool::lasso, "lasso", QT_TRANSLATE_NOOP("Tool", "Lasso Select"), 'L', "selections", false, false},
    {Tool::move, "move", QT_TRANSLATE_NOOP("Tool", "Move & Transform"), 'V', "transform", false, true},
    {Tool::shape, "shape", QT_TRANSLATE_NOOP("Tool", "Shapes"), 'U', "shapes", false, true},
    {Tool::text, "text", QT_TRANSLATE_NOOP("Tool", "Text"), 'T', "text", false, true},
    {Tool::hand, "hand", QT_TRANSLATE_NOOP("Tool", "Hand (Pan)"), 'H', "navigate", false, false},
    {Tool::zoom, "zoom", QT_TRANSLATE_NOOP("Tool", "Zoom"), 'Z', "navigate", false, false},
}};

constexpr const ToolRow& rowOf(Tool tool) {
    return kTools[static_cast<std::size_t>(tool)];
}
QString toolTitle(Tool tool); ///< In the user's language.
std::optional<Tool> toolWithId(const QString& id);
std::optional<Tool> toolWithKey(QChar letter); ///< Case does not count; only tools that work.

} // namespace qirn

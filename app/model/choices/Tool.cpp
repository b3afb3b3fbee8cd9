#include "app/model/choices/Tool.h"

#include "brush/BrushSettings.h"
#include "kit/icons/Icons.h"

#include <QCoreApplication>

namespace qirn {

#define TEXT(text) QT_TRANSLATE_NOOP("Tool", text)

// clang-format off
constexpr std::array<ToolRow, kToolCount> kTools{{
    {.tool = Tool::brush, .id = "brush", .title = TEXT("Brush"), .key = 'B', .icon = Icon::brush, .helpTopic = "brush",
     .options = OptionGroup::brush, .edits = true, .undoName = TEXT("Brush Stroke"), .picksWithOption = true},
    {.tool = Tool::eraser, .id = "eraser", .title = TEXT("Eraser"), .key = 'E', .icon = Icon::eraser, .helpTopic = "eraser",
     .options = OptionGroup::brush, .edits = true, .undoName = TEXT("Erase"), .picksWithOption = true,
     .brushKind = BrushKind::erase, .preset = "Hard Eraser"},
    {.tool = Tool::smudge, .id = "smudge", .title = TEXT("Smudge"), .key = 'S', .icon = Icon::smudge, .helpTopic = "smudge-blur",
     .options = OptionGroup::brush, .edits = true, .undoName = TEXT("Smudge"), .picksWithOption = true,
     .brushKind = BrushKind::smudge, .preset = "Smudge"},
    {.tool = Tool::blur, .id = "blur", .title = TEXT("Blur"), .key = 'R', .icon = Icon::blur, .helpTopic = "smudge-blur",
     .options = OptionGroup::brush, .edits = true, .undoName = TEXT("Blur"), .picksWithOption = true,
     .brushKind = BrushKind::blur, .preset = "Blur"},
    {.tool = Tool::bucket, .id = "bucket", .title = TEXT("Bucket Fill"), .key = 'G', .icon = Icon::bucket, .helpTopic = "bucket",
     .options = OptionGroup::fill, .edits = true, .undoName = TEXT("Bucket Fill"), .picksWithOption = true},
    {.tool = Tool::gradient, .id = "gradient", .title = TEXT("Gradient"), .key = 'D', .icon = Icon::gradient, .helpTopic = "gradient",
     .options = OptionGroup::gradient, .edits = true, .undoName = TEXT("Gradient"), .picksWithOption = true},
    {.tool = Tool::eyedropper, .id = "eyedropper", .title = TEXT("Eyedropper"), .key = 'I', .icon = Icon::eyedropper,
     .helpTopic = "eyedropper", .options = OptionGroup::picking},
    {.tool = Tool::selectRect, .id = "selectRect", .title = TEXT("Rectangle Select"), .key = 'M', .icon = Icon::selectRect,
     .helpTopic = "selections", .options = OptionGroup::selection, .undoName = TEXT("Select")},
    {.tool = Tool::selectEllipse, .id = "selectEllipse", .title = TEXT("Ellipse Select"), .key = 'O', .icon = Icon::selectEllipse,
     .helpTopic = "selections", .options = OptionGroup::selection, .undoName = TEXT("Select")},
    {.tool = Tool::lasso, .id = "lasso", .title = TEXT("Lasso Select"), .key = 'L', .icon = Icon::lasso,
     .helpTopic = "selections", .options = OptionGroup::selection, .undoName = TEXT("Select")},
    {.tool = Tool::move, .id = "move", .title = TEXT("Move & Transform"), .key = 'V', .icon = Icon::move, .helpTopic = "transform",
     .options = OptionGroup::transform, .edits = true, .cursor = Qt::ArrowCursor},
    {.tool = Tool::shape, .id = "shape", .title = TEXT("Shapes"), .key = 'U', .icon = Icon::shape, .helpTopic = "shapes",
     .options = OptionGroup::shape, .edits = true, .picksWithOption = true},
    {.tool = Tool::text, .id = "text", .title = TEXT("Text"), .key = 'T', .icon = Icon::text, .helpTopic = "text",
     .options = OptionGroup::text, .edits = true, .cursor = Qt::IBeamCursor},
    {.tool = Tool::hand, .id = "hand", .title = TEXT("Hand (Pan)"), .key = 'H', .icon = Icon::hand, .helpTopic = "navigate",
     .options = OptionGroup::view, .cursor = Qt::OpenHandCursor, .dragCursor = Qt::ClosedHandCursor},
    {.tool = Tool::zoom, .id = "zoom", .title = TEXT("Zoom"), .key = 'Z', .icon = Icon::zoom, .helpTopic = "navigate", .options = OptionGroup::view},
}};
// clang-format on

static_assert([] {
    for (int i = 0; i < kToolCount; ++i) {
        if (kTools[static_cast<std::size_t>(i)].tool != static_cast<Tool>(i)) return false;
    }
    return true;
}());

QString toolTitle(Tool tool) {
    return QCoreApplication::translate("Tool", rowOf(tool).title);
}

QString undoNameOf(Tool tool) {
    return QCoreApplication::translate("Tool", rowOf(tool).undoName);
}

std::optional<Tool> toolWithId(const QString& id) {
    for (const ToolRow& row : kTools) {
        if (id == QLatin1String(row.id)) return row.tool;
    }
    return std::nullopt;
}

} // namespace qirn

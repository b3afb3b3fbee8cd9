#pragma once
#include <QColor>
#include <QIcon>
#include <QPixmap>

namespace qirn {

/// What can be shown as an icon, by meaning; `Icons.cpp` has the file of each.
enum class Icon {
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
    plus,
    minus,
    open,
    save,
    exportPicture,
    undo,
    redo,
    help,
    close,
    eye,
    eyeOff,
    lock,
    alphaLock,
    clip,
    trash,
    duplicate,
    arrowLeft,
    arrowRight,
    arrowUp,
    arrowDown,
    swap,
    blackWhite,
    reset,
    chevronUp,
    chevronDown,
    chevronRight,
    check,
    flipHorizontal,
    flipVertical,
    warning,
    info,
    folder,
    folderNew,
    file,
    computer,
    grid,
    list,
    search,
    merge,
};
inline constexpr Icon kLastIcon = Icon::merge;

} // namespace qirn

/// One set of outline icons, drawn from vectors at the exact pixels asked for.
namespace qirn::Icons {

/// Follows the theme and its button: dim when disabled, the accent's text color when on.
QIcon themed(Icon icon);

/// A square of `size` logical pixels at `ratio` device pixels each, in one color. Cached.
QPixmap pixmap(Icon icon, int size, double ratio, const QColor& color);

QString file(Icon icon); ///< The path among the resources.

} // namespace qirn::Icons

#include "app/model/choices/FixedKeys.h"

#include <QCoreApplication>

namespace qirn {

namespace {

#define TEXT(text) QT_TRANSLATE_NOOP("FixedKeys", text)

constexpr int kShift = Qt::SHIFT;

constexpr FixedKey kFixedKeys[] = {
    {Qt::Key_BracketLeft, TEXT("Smaller brush")},
    {Qt::Key_BracketRight, TEXT("Larger brush")},
    {Qt::Key_X, TEXT("Swap colors")},
    {kShift | Qt::Key_D, TEXT("Black and white")},
    {Qt::Key_Equal, TEXT("Zoom in")},
    {Qt::Key_Plus, TEXT("Zoom in")},
    {Qt::Key_Minus, TEXT("Zoom out")},
    {Qt::Key_Underscore, TEXT("Zoom out")},
    {Qt::Key_F, TEXT("Fit in window")},
    {Qt::Key_1, TEXT("Actual pixels")},
    {Qt::Key_Comma, TEXT("Rotate view left")},
    {Qt::Key_Period, TEXT("Rotate view right")},
    {Qt::Key_Slash, TEXT("Reset rotation")},
    {Qt::Key_W, TEXT("Flip view")},
    {Qt::Key_Space, TEXT("Pan while it is held")},
    {Qt::Key_Backspace, TEXT("Clear pixels")},
    {Qt::Key_Delete, TEXT("Clear pixels")},
    {Qt::Key_Return, TEXT("Apply the transform")},
    {Qt::Key_Enter, TEXT("Apply the transform")},
    {Qt::Key_Escape, TEXT("Cancel or deselect")},
    {Qt::Key_Left, TEXT("Nudge")},
    {Qt::Key_Right, TEXT("Nudge")},
    {Qt::Key_Up, TEXT("Nudge")},
    {Qt::Key_Down, TEXT("Nudge")},
    {kShift | Qt::Key_Left, TEXT("Nudge by 10 pixels")},
    {kShift | Qt::Key_Right, TEXT("Nudge by 10 pixels")},
    {kShift | Qt::Key_Up, TEXT("Nudge by 10 pixels")},
    {kShift | Qt::Key_Down, TEXT("Nudge by 10 pixels")},
    {Qt::Key_Tab, TEXT("Hide or show the panels")},
    {kShift | Qt::Key_Tab, TEXT("Previous control")},
    {Qt::Key_F6, TEXT("Next part of the window")},
    {kShift | Qt::Key_F6, TEXT("Previous part of the window")},
};

#undef TEXT

} // namespace

std::span<const FixedKey> fixedKeys() {
    return kFixedKeys;
}

QString whatItDoes(const FixedKey& fixed) {
    return QCoreApplication::translate("FixedKeys", fixed.what);
}

const FixedKey* fixedKey(int key) {
    for (const FixedKey& fixed : kFixedKeys) {
        if (fixed.key == key) return &fixed;
    }
    return nullptr;
}

} // namespace qirn

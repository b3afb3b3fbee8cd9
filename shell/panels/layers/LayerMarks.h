#pragma once
#include "core/Layer.h"
#include "kit/icons/Icons.h"

#include <QCoreApplication>

namespace qirn {

/// The columns of the list of layers. Each but the name is a mark.
enum class LayerColumn { eye, name, lock, alpha, clip };
inline constexpr int kLayerColumns = 5;

/// What a layer can be, with a column of buttons for it. The texts are sources of the context "LayerMark".
struct LayerMark {
    LayerColumn column;
    bool LayerSettings::*flag;
    Icon icon;
    Icon iconOff;
    const char* name; ///< Read out, with its state.
    const char* tip;
    const char* tipOff;
    const char* word; ///< In what is read out of the whole row; null where being it goes without saying.
    const char* wordOff;

    static QString text(const char* source) { return QCoreApplication::translate("LayerMark", source); }
};

#define TEXT(text) QT_TRANSLATE_NOOP("LayerMark", text)
inline constexpr LayerMark kLayerMarks[] = {
    {LayerColumn::eye, &LayerSettings::isVisible, Icon::eye, Icon::eyeOff, TEXT("Visible"),
     TEXT("Hide Layer"), TEXT("Show Layer"), nullptr, TEXT("hidden")},
    {LayerColumn::lock, &LayerSettings::isLocked, Icon::lock, Icon::lock, TEXT("Locked"), TEXT("Locked"),
     TEXT("Lock Layer"), TEXT("locked"), nullptr},
    {LayerColumn::alpha, &LayerSettings::alphaLocked, Icon::alphaLock, Icon::alphaLock, TEXT("Alpha lock"),
     TEXT("Alpha lock"), TEXT("Alpha Lock"), TEXT("alpha lock"), nullptr},
    {LayerColumn::clip, &LayerSettings::isClipping, Icon::clip, Icon::clip,
     TEXT("Clipped to the layer below"), TEXT("Clipped to the layer below"), TEXT("Clip to Layer Below"),
     TEXT("clipped"), nullptr},
};
#undef TEXT

/// Null for the column of names.
constexpr const LayerMark* markOfColumn(int column) {
    for (const LayerMark& mark : kLayerMarks)
        if (static_cast<int>(mark.column) == column) return &mark;
    return nullptr;
}

} // namespace qirn

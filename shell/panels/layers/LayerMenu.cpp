#include "shell/panels/layers/LayerMenu.h"

#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

#include <QCoreApplication>
#include <QMenu>

namespace qirn {

namespace {

struct MenuRow {
    const char* name = nullptr; ///< Of the action; null for a divider.
    const char* title = nullptr;
    void (*run)(PaintModel&) = nullptr;
    bool LayerSettings::*flag = nullptr; ///< What the item turns.
    const char* titleOff = nullptr;      ///< While the flag is set; null for a check mark.
};

void askForName(PaintModel& model) {
    if (const DocSession* session = model.current())
        model.showSheet({.kind = PaintSheet::Kind::renameLayer, .layer = session->doc().activeLayer().id});
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::LayerMenu", text)
constexpr MenuRow kRows[] = {
    {"renameLayer", TEXT("Rename…"), askForName},
    {},
    {"duplicate", TEXT("Duplicate"), LayerEdits::duplicateLayer},
    {"mergeDown", TEXT("Merge Down"), LayerEdits::mergeDown},
    {},
    {"clip", TEXT("Clip to Layer Below"), LayerEdits::toggleClipping, &LayerSettings::isClipping,
     TEXT("Release Clipping")},
    {"lock", TEXT("Lock Layer"), LayerEdits::toggleLock, &LayerSettings::isLocked, TEXT("Unlock Layer")},
    {"alphaLock", TEXT("Alpha Lock"), LayerEdits::toggleAlphaLock, &LayerSettings::alphaLocked},
    {},
    {"clear", TEXT("Clear Pixels"), LayerEdits::clearLayer},
    {"delete", TEXT("Delete Layer…"), LayerEdits::deleteLayer},
};
#undef TEXT

} // namespace

void showLayerMenu(PaintModel& model, QWidget& list, const QPoint& at) {
    const DocSession* session = model.current();
    if (!session) return;
    const LayerSettings& layer = session->doc().activeLayer();
    auto* menu = new QMenu(&list);
    menu->setObjectName(QStringLiteral("layerMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const MenuRow& row : kRows) {
        if (!row.name) {
            menu->addSeparator();
            continue;
        }
        const bool on = row.flag && layer.*row.flag;
        const char* title = on && row.titleOff ? row.titleOff : row.title;
        QAction* action = menu->addAction(QCoreApplication::translate("qirn::LayerMenu", title));
        action->setObjectName(QString::fromLatin1(row.name));
        action->setCheckable(row.flag && !row.titleOff);
        action->setChecked(on);
        QObject::connect(action, &QAction::triggered, &list,
                         guarding(model, [&model, run = row.run] { run(model); }));
    }
    menu->popup(at);
}

} // namespace qirn

#include "shell/preferences/PreferencesHost.h"

#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/help/KitWindow.h"
#include "shell/preferences/PreferencesView.h"

namespace qirn {

namespace {

constexpr QSize kSize{600, 640}; // at zoom 1

} // namespace

PreferencesHost::PreferencesHost(PaintModel& model, QObject* parent) : QObject(parent), model_(model) {
    connect(&model, &PaintModel::preferencesAsked, this, guarding(model, [this] { show(); }));
}

PreferencesHost::~PreferencesHost() {
    delete window_;
}

void PreferencesHost::show() {
    if (!window_)
        window_ = new KitWindow(PreferencesView::tr("Preferences"), kSize, new PreferencesView(model_),
                                "qirn.pt.preferencesWindow");
    window_->bringUp();
}

} // namespace qirn

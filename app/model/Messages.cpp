#include "app/model/Messages.h"

#include "app/desktop/Desktop.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

namespace qirn {

Messages::Messages(PaintModel& model) : model_(model) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, guarding(model_, [this] {
        hud_.reset();
        model_.announce();
    }));
}

void Messages::flash(const QString& text) {
    hud_ = text;
    timer_.start(shownFor);
    model_.announce();
}

void Messages::alert(const QString& title, const QString& text) {
    model_.desktop().ask(title, text, {tr("OK")}, 0);
}

bool Messages::offerWhatCanBeRead(const QString& title, const QString& text) {
    return model_.desktop().ask(title, text, {tr("OK"), tr("Open What Can Be Read")}, 0) == 1;
}

bool Messages::confirm(const QString& title, const QString& text) {
    return model_.desktop().ask(title, text, {tr("OK"), tr("Cancel")}, 1) == 0;
}

} // namespace qirn

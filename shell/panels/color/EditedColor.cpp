#include "shell/panels/color/EditedColor.h"

#include "app/model/Colors.h"
#include "app/model/PaintModel.h"

namespace qirn {

const PaintColor& EditedColor::paintColor() const {
    return model_.colors().primary();
}

void EditedColor::setHue(const HueColor& hue) {
    hue_ = hue;
    lastSet_ = hue.paintColor();
    model_.colors().setPrimary(lastSet_);
}

void EditedColor::setChannel(double PaintColor::*channel, double value) {
    PaintColor color = paintColor();
    color.*channel = value;
    model_.colors().setPrimary(color);
}

void EditedColor::follow() {
    if (paintColor() == lastSet_) return;
    lastSet_ = paintColor();
    hue_ = HueColor::of(lastSet_, hue_);
}

} // namespace qirn

#pragma once
#include "shell/panels/color/HueColor.h"

namespace qirn {

class PaintModel;

/// The paint color as its panel edits it. Hue and saturation survive black, white and gray, and what the panel sets comes
/// back as it was set: nothing passes through 8 bits or through another form of color.
class EditedColor {
public:
    explicit EditedColor(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    bool showsRGB = false; ///< The sliders are of red, green and blue.

    const HueColor& hue() const { return hue_; }
    void setHue(const HueColor& hue);
    const PaintColor& paintColor() const;
    void setChannel(double PaintColor::*channel, double value);
    void follow(); ///< After a change of the model.

private:
    PaintModel& model_;
    HueColor hue_;
    PaintColor lastSet_; // the one that `hue_` stands for
};

} // namespace qirn

#pragma once
#include <cmath>

namespace qirn {

/// Two sides of which one follows the other. While one of them is typed, digit by digit, the ratio is the one from before
/// the typing, or "9" on the way to "960" would leave nothing of it.
class Proportions {
public:
    double width = 0;
    double height = 0;
    bool keep = true;

    void setWidth(double value) { set(Side::width, width, value, height); }
    void setHeight(double value) { set(Side::height, height, value, width); }
    void endTyping() { typed_ = Side::none; } ///< The next change takes the ratio anew.

private:
    enum class Side { none, width, height };

    void set(Side side, double& edited, double value, double& other) {
        if (typed_ != side) ratio_ = edited > 0 ? other / edited : 1;
        typed_ = side;
        edited = value;
        if (keep) other = std::round(value * ratio_);
    }

    Side typed_ = Side::none;
    double ratio_ = 1; // of the other side to the one that is typed
};

} // namespace qirn

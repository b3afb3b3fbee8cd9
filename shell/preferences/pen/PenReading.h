#pragma once
#include <array>
#include <optional>

#include <QPointingDevice>
#include <QString>

namespace qirn {

/// What the latest event of a pen or mouse said.
struct PenReading {
    QString device; ///< Its name; empty where it has none.
    QPointingDevice::PointerType pointer = QPointingDevice::PointerType::Unknown;
    bool fromPen = false; ///< A mouse has no tilt.
    double pressure = 0;  ///< 0 to 1, as it came.
    double shaped = 0;    ///< After the pressure curve.
    double tiltX = 0;     ///< Degrees.
    double tiltY = 0;
    bool erases = false;
};

/// How many events came a second, over the last ones.
class EventRate {
public:
    void note(double time); ///< Seconds of any clock that does not go back.
    void reset() { count_ = 0; }
    std::optional<double> perSecond() const; ///< Nothing before there are two at different times.

private:
    std::array<double, 64> times_{}; // a ring
    std::size_t count_ = 0;          // that ever came
};

} // namespace qirn

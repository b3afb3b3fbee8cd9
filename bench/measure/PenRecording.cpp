#include "PenRecording.h"

#include <algorithm>
#include <cmath>

#include <QFile>
#include <QTextStream>

namespace qirn::bench {

std::optional<std::vector<PenStroke>> readPenRecording(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    std::vector<PenStroke> strokes;
    bool isDown = false;
    QTextStream numbers(&file);
    for (numbers.skipWhiteSpace(); !numbers.atEnd(); numbers.skipWhiteSpace()) {
        double time = 0, x = 0, y = 0, pressure = 0;
        numbers >> time >> x >> y >> pressure;
        if (numbers.status() != QTextStream::Ok || !std::isfinite(time + x + y + pressure))
            return std::nullopt;
        if (pressure > 0) {
            if (!isDown) strokes.emplace_back();
            strokes.back().emplace_back(x, y, pressure, 0, 0, time);
        }
        isDown = pressure > 0;
    }
    return strokes;
}

std::vector<PenStroke> toSixtyFourths(const std::vector<PenStroke>& strokes, double scale, double dx,
                                      double dy) {
    const auto rounded = [](double v) { return std::round(v * 64) / 64; };
    std::vector<PenStroke> result = strokes;
    for (PenStroke& stroke : result) {
        for (StrokePoint& point : stroke) {
            point.x = rounded(point.x * scale + dx);
            point.y = rounded(point.y * scale + dy);
            point.pressure = std::max(rounded(point.pressure), 1.0 / 64);
        }
    }
    return result;
}

} // namespace qirn::bench

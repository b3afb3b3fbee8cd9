#include "support/PenRecording.h"

#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QFile>
#include <QTextStream>

namespace qirn::test {

namespace {

/// Adds samples until `length` seconds have passed, 125 a second; shape(t) gives a point for t from 0 to 1.
template <class Shape> PenStroke drawn(double start, double length, Shape shape) {
    PenStroke points;
    const int count = static_cast<int>(length * 125);
    for (int i = 0; i <= count; ++i) {
        const double t = static_cast<double>(i) / count;
        StrokePoint point = shape(t);
        point.time = start + t * length;
        points.push_back(point);
    }
    return points;
}

/// Sine and cosine of a number of turns.
SineCosine wave(double turns) {
    return sineCosine(2 * turns * std::numbers::pi);
}

double swell(double t) {
    return 0.05 + 0.9 * wave(t / 2).sine;
}

} // namespace

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

std::optional<std::vector<PenStroke>> recordedHand(double scale, double dx, double dy) {
    const QString folder = qEnvironmentVariable("QIRN_DATA");
    const auto strokes = readPenRecording(folder + QStringLiteral("/pen-30s.txt"));
    if (folder.isEmpty() || !strokes) return std::nullopt;
    return toSixtyFourths(*strokes, scale, dx, dy);
}

std::vector<PenStroke> syntheticHand(double scale, double dx, double dy) {
    std::vector<PenStroke> strokes;
    // A long S that swells and fades.
    strokes.push_back(
        drawn(0, 0.8, [](double t) { return StrokePoint(40 + 520 * t, 120 + 70 * wave(t).sine, swell(t)); }));
    // A quick scribble that crosses itself, with loops that shrink.
    strokes.push_back(drawn(1, 0.9, [](double t) {
        const auto [sine, cosine] = wave(5 * t);
        const double r = 70 * (1 - 0.6 * t);
        return StrokePoint(150 + 280 * t + r * cosine, 260 + r * sine, 0.35 + 0.3 * sine);
    }));
    // Two taps of the pen, one of them shaking.
    strokes.push_back({StrokePoint(500, 60, 0.7, 0, 0, 2.2)});
    strokes.push_back(drawn(2.4, 0.08, [](double t) { return StrokePoint(540 + t, 60 - t, 0.2 + 0.5 * t); }));
    // A slow straight line of full pressure that stops for a moment on its way.
    strokes.push_back(drawn(2.7, 0.8, [](double t) {
        const double along = t < 0.4 ? t / 0.4 * 0.5 : t < 0.6 ? 0.5 : 0.5 + (t - 0.6) / 0.4 * 0.5;
        return StrokePoint(60 + 200 * along, 380 - 40 * along, 1);
    }));
    return toSixtyFourths(strokes, scale, dx, dy);
}

} // namespace qirn::test

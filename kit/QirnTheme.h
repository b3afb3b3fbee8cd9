#pragma once
#include <cstdint>

#include <QColor>
#include <QString>

namespace qirn {

/// The colors that views read, in sRGB. All are opaque but `rim`, which is laid over a surface as an edge.
struct QrKitTheme {
    QColor bg; ///< Behind everything: the surround of the canvas and the wells of fields.
    QColor text;
    QColor dim; ///< Text and marks of second rank.
    QColor rim;
    QColor accent;
    QColor panelTop; ///< The lighter end of a panel's metal.
    QColor panelBottom;

    bool operator==(const QrKitTheme&) const = default;
};

/// One color theme of the whole interface, as stored and registered.
struct QirnTheme {
    /// Straight sRGB, each from 0 to 1.
    struct RGB {
        double r = 0;
        double g = 0;
        double b = 0;

        static constexpr RGB fromHex(uint32_t hex) { ///< 0xRRGGBB
            return {((hex >> 16) & 0xFF) / 255.0, ((hex >> 8) & 0xFF) / 255.0, (hex & 0xFF) / 255.0};
        }
        static RGB fromColor(const QColor& color); ///< Alpha is left out.
        double luminance() const;                  ///< Relative luminance of WCAG 2, 0 to 1.
        /// Contrast ratio of WCAG 2, 1 to 21; either may be the lighter.
        double contrast(const RGB& other) const;
        bool operator==(const RGB&) const = default;
    };
    enum class Family { masculine, feminine, black, gray, extra };

    QString id;
    QString name;
    Family family = Family::extra;
    RGB bg;
    RGB panelTop;
    RGB panelBottom;
    RGB text;
    RGB dim;
    RGB accent;

    QrKitTheme kitTheme() const;
    bool operator==(const QirnTheme&) const = default;
};

} // namespace qirn

#pragma once
#include <cstdint>
#include <optional>

#include <QObject>
#include <QString>

namespace qirn {

/// What the status bar shows of the canvas. It changes at the rate of pen events, so it has a notifier of its own: moving
/// the pen refreshes nothing else.
class CanvasStatus : public QObject {
    Q_OBJECT
public:
    struct Cursor {
        int64_t x = 0; ///< Canvas pixels, floored.
        int64_t y = 0;
        bool inside = false; ///< Over the picture.
        double pressure = 0; ///< 0 to 1; 0 while hovering.

        bool operator==(const Cursor&) const = default;
    };
    struct View {
        double zoom = 1;
        double rotation = 0; ///< Degrees, clockwise on screen.
        bool flipped = false;

        bool operator==(const View&) const = default;
    };

    const Cursor& cursor() const { return cursor_; }
    const View& view() const { return view_; }
    const std::optional<QString>& lastStrokeStats() const { return lastStrokeStats_; }

    void setCursor(const Cursor& cursor) { set(cursor_, cursor); }
    void setView(const View& view) { set(view_, view); }
    void setLastStrokeStats(const QString& text) { set(lastStrokeStats_, std::optional<QString>(text)); }

Q_SIGNALS:
    void changed();

private:
    template <class T> void set(T& field, const T& value) {
        if (field == value) return;
        field = value;
        Q_EMIT changed();
    }

    Cursor cursor_;
    View view_;
    std::optional<QString> lastStrokeStats_;
};

} // namespace qirn

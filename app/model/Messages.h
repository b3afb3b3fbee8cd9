#pragma once
#include <optional>

#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

class PaintModel;

/// What the studio says: the transient line over the canvas, and boxes that wait for an answer.
class Messages : public QObject {
    Q_OBJECT
public:
    explicit Messages(PaintModel& model); ///< Borrowed for its life.

    const std::optional<QString>& hud() const { return hud_; } ///< The transient line.
    void flash(const QString& text);                           ///< Shown for 2.6 seconds; the newest wins.
    void alert(const QString& title, const QString& text);
    /// Tells of damaged documents; whether what can be read of them is wanted.
    bool offerWhatCanBeRead(const QString& title, const QString& text);
    bool confirm(const QString& title, const QString& text); ///< Whether "OK" was the answer.

    int shownFor = 2600; ///< Milliseconds that a line stands.

private:
    PaintModel& model_;
    std::optional<QString> hud_;
    QTimer timer_; // single shot: the end of the line
};

} // namespace qirn

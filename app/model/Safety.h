#pragma once
#include <optional>

#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

class PaintModel;

/// Safety copies of unsaved work: on a timer, and when the process is made to end.
class Safety : public QObject {
    Q_OBJECT
public:
    explicit Safety(PaintModel& model); ///< Borrowed for its life.

    void startAutosave();
    void autosaveTick();
    const std::optional<QString>& lastAutosaveText() const { return lastAutosaveText_; }
    /// Writes the store and a copy of every picture with unsaved work, as last committed, whatever the preferences say, and
    /// waits for the writes: the process is about to end.
    void keepWork();

private:
    PaintModel& model_;
    std::optional<QString> lastAutosaveText_;
    QTimer timer_;
};

} // namespace qirn

#pragma once
#include <optional>

#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

class PaintModel;

/// Copies of unsaved work, from time to time and when the process is made to end.
class Safety : public QObject {
    Q_OBJECT
public:
    explicit Safety(PaintModel& model); ///< Borrowed for its life.

    void startAutosave();
    void autosaveTick();
    const std::optional<QString>& lastAutosaveText() const { return lastAutosaveText_; }
    /// Copies of all unsaved work, as it was last committed and whatever the preferences say, and the store: what remains
    /// to be done when the process is made to end. Waits for it.
    void keepWork();

private:
    PaintModel& model_;
    std::optional<QString> lastAutosaveText_;
    QTimer timer_;
};

} // namespace qirn

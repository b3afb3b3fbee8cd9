#pragma once
#include <chrono>
#include <optional>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

class DocSession;
class PaintModel;

/// Safety copies of unsaved work: on a timer, and when the process is made to end.
///
/// A copy that falls due in a stroke waits for the turn of the main loop after it, so that none is taken inside a pen
/// event. What it is of is the last commit, also while pixels float.
class Safety : public QObject {
    Q_OBJECT
public:
    explicit Safety(PaintModel& model); ///< Borrowed for its life.

    /// The tick is shorter than the shortest interval, so that a change of the preference takes effect soon.
    void startAutosave(std::chrono::milliseconds tick = std::chrono::seconds(10));
    void autosaveTick();
    void gestureEnded(); ///< What fell due in it comes now.
    /// "Autosaved" and the time of the latest copy that is on disk, or that an open picture's last one is not; nothing
    /// before the first.
    std::optional<QString> lastAutosaveText() const;
    /// Whether the picture, as it was last committed, is in its safety copy on disk.
    bool isAutosaved(DocSession& session);
    /// Writes the store and a copy of every picture with unsaved work, as last committed, whatever the preferences say, and
    /// waits for the writes: the process is about to end.
    void keepWork();

private:
    bool isDue(const DocSession& session) const;
    void takeDueCopies();
    void takeSoon();     ///< Once this event is over, and long work.
    void settleCopies(); ///< Of what the background has done since.
    void tell();         ///< The views, and the user of the third failure in a row.

    PaintModel& model_;
    QDateTime latest_;       // of the copies that are on disk
    bool isWaiting_ = false; // a copy that is due
    bool isQueued_ = false;  // `takeDueCopies`
    bool hasNews_ = false;   // for the views
    QTimer timer_;
};

} // namespace qirn

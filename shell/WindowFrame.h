#pragma once
#include <QObject>
#include <QTimer>

class QWidget;

namespace qirn {

class PaintModel;

/// What the desktop sees of the main window: its title, which names the current picture and marks unsaved work, and its
/// place, size and maximised state, which are kept for the next start.
class WindowFrame : public QObject {
    Q_OBJECT
public:
    /// Both are borrowed for its life; it belongs to the window.
    WindowFrame(PaintModel& model, QWidget& window);

    /// As it was the last time, on a screen that is there; false where nothing is known. Before the window shows.
    bool restore();
    void keep() const; ///< Also done by itself soon after a change.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    PaintModel& model_;
    QWidget& window_;
    QTimer atRest_; // single shot: the window has been moved or resized
};

} // namespace qirn

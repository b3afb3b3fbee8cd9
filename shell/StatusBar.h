#pragma once
#include <QTimer>

#include "kit/controls/ChromePanel.h"

namespace qirn {

class PaintModel;
class PressureMeter;
class StatusText;

/// What is known of the current picture, in one line. It also follows `CanvasStatus`, at the rate of the pen. Where there is
/// no room for all of it the layer's name is shortened, and then whole items go, those first that are told elsewhere too.
class StatusBar : public ChromePanel {
    Q_OBJECT
public:
    StatusBar(PaintModel& model, QWidget* parent);

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent*) override { makeRoom(); }

private:
    void refresh();
    void makeRoom();      ///< Shows the items that fit.
    void followCursor();  ///< Now or after the pause: a repaint for every pen event would slow the pen.
    void refreshCursor(); ///< Shows what `CanvasStatus` has.

    PaintModel& model_;
    QTimer pause_;        // runs after each update of the cursor
    bool isLate_ = false; // the cursor has changed during the pause
    StatusText* size_;
    StatusText* zoom_;
    StatusText* rotation_;
    StatusText* flip_;
    StatusText* cursor_;
    PressureMeter* pressure_;
    StatusText* layer_;
    StatusText* undo_;
    StatusText* stroke_;
    StatusText* autosave_;
};

} // namespace qirn

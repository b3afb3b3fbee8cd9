#pragma once
#include <QObject>

class QAction;
class QMenuBar;

namespace qirn {

class CanvasView;
class PaintModel;

/// The menu bar: a table that binds items and shortcuts to the model and the canvas. It holds no logic of its own;
/// titles and enabled states follow the model.
class PaintCommands : public QObject {
    Q_OBJECT
public:
    /// Fills the menu bar; every action has its command's object name. Model and view are borrowed.
    PaintCommands(PaintModel& model, CanvasView& view, QMenuBar& menuBar);

    QAction* action(const QString& objectName) const; ///< Null for a name that is not in the table.

private:
    void refresh();

    PaintModel& model_;
};

} // namespace qirn

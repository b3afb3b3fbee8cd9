#pragma once
#include "app/model/choices/KeyChoices.h"

#include <vector>

#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace qirn {

class CanvasView;
class PaintModel;
struct CommandRow;

/// The menu bar: binds the command rows to items and shortcuts. It holds no logic of its own; titles and enabled states
/// follow the model.
class PaintCommands : public QObject {
    Q_OBJECT
public:
    /// Fills the menu bar; every action has its command's object name. Model and view are borrowed.
    PaintCommands(PaintModel& model, CanvasView& view, QMenuBar& menuBar);

    QAction* action(const QString& objectName) const; ///< Null for a name that is not in the table.

    /// Makes a list those choices of a row that there are now.
    static void fill(QMenu& list, const CommandRow& row, PaintModel& model);

private:
    void addRow(const CommandRow& row, QMenu& menu);
    void addList(const CommandRow& row, QMenu& list); ///< Filled whenever it opens.
    struct Bound {
        const CommandRow* row;
        QAction* action;
        QAction* unshown; ///< With keys that the menu does not show; null where there never were any.
    };
    void bindKeys(Bound& bound);
    void refresh();

    PaintModel& model_;
    CanvasView& view_;
    QWidget& window_;
    std::vector<Bound> actions_; // each of a row that is no divider
    KeyChoices keys_;            // as they are bound
};

} // namespace qirn

#pragma once
#include <functional>
#include <vector>

#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace qirn {

class PaintModel;

/// What the user chooses once for all pictures, in sections; each change holds at once.
class PreferencesView : public QWidget {
    Q_OBJECT
public:
    explicit PreferencesView(PaintModel& model); ///< Borrows the model.

protected:
    void showEvent(QShowEvent*) override { refresh(); }

private:
    void refresh();

    PaintModel& model_;
    QTabBar* tabs_;
    QStackedWidget* pages_;
    std::vector<std::function<void()>> refreshPages_; // in the order of the tabs
};

} // namespace qirn

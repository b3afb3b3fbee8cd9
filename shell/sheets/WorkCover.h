#pragma once
#include "app/files/LongTask.h"

#include <functional>

#include <QPointer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace qirn {

/// A quiet box over the window while long work runs: what is done, how far it is, "Cancel", which Escape presses.
class WorkCover final : public QWidget, public LongTaskCover {
    Q_OBJECT
public:
    explicit WorkCover(QWidget* window); ///< Lies over all of it.

    void rise(const QString& what, const std::function<void()>& cancel) override;
    void showDone(double fraction) override;
    void fall() override;
    bool isPart(const QObject& receiver) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Line;
    QWidget* box_;
    QLabel* what_;
    Line* line_;
    QPushButton* cancel_;
    std::function<void()> doCancel_;
    QPointer<QWidget> focusBefore_; // has the keyboard again afterwards
};

} // namespace qirn

#pragma once
#include <vector>

#include <QScrollArea>
#include <QTimer>

class QHBoxLayout;

namespace qirn {

class DocTab;
class PaintModel;

/// A tab for each open picture, in their order. Where they do not fit, names are shortened and then the strip scrolls
/// sideways, with the current tab always in sight. The Tab key reaches the current tab, the arrow keys its neighbors.
class TabStrip : public QScrollArea {
    Q_OBJECT
public:
    TabStrip(PaintModel& model, QWidget* parent); ///< Borrows the model.

    void refresh();
    bool isOverfull() const; ///< Some tab is out of sight.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void overfullChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void followLayout(); ///< The tabs or the strip have other sizes.

    PaintModel& model_;
    QWidget* place_; // of the tabs in the order of the Tab key
    QHBoxLayout* row_;
    std::vector<DocTab*> tabs_; // one a session
    DocTab* current_ = nullptr;
    QTimer laidOut_; // single shot: runs out behind the layout
    bool wasOverfull_ = false;
};

} // namespace qirn

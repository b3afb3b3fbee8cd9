#pragma once
#include <QAbstractButton>
#include <QUuid>

namespace qirn {

class DocSession;
class IconButton;
class PaintModel;

/// The tab of one open picture: its name, a dot while it is not saved, and a button that closes it.
class DocTab : public QAbstractButton {
    Q_OBJECT
public:
    DocTab(PaintModel& model, QWidget* parent);

    void showSession(const DocSession& session, bool current);
    bool showsDot() const { return dot_->isVisibleTo(this); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override {} // a click does not check it: the model says which tab is current

private:
    int nameWidth() const; ///< That its tab would like.
    void closeSession();
    DocSession* session() const; ///< Null once it is gone.

    PaintModel& model_;
    QUuid id_;
    QWidget* dot_;
    IconButton* close_;
};

} // namespace qirn

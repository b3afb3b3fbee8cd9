#pragma once
#include <QLineEdit>

namespace qirn {

class IconButton;

/// A field to look for something in a list: each key is a search. Escape empties it. The arrow down goes on to the list.
class SearchField : public QLineEdit {
    Q_OBJECT
public:
    SearchField(const QString& accessibleName, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void leftDownward();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layOut();

    IconButton* clear_; // there while something is typed
};

} // namespace qirn

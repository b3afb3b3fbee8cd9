#pragma once
#include <QWidget>

namespace qirn {

/// One line of dim text that gives way: it ends in dots where there is no room, and then tells itself in its tip.
class ChromeNote : public QWidget {
    Q_OBJECT
public:
    ChromeNote(const QString& text, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString text_;
};

} // namespace qirn

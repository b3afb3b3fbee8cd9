#pragma once
#include <QWidget>

namespace qirn {

/// One line of dim text. Where there is no room for it, it is elided and its tip has the whole.
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

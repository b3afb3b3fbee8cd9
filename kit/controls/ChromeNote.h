#pragma once
#include <QWidget>

#include "kit/ChromeFont.h"

namespace qirn {

/// One line of dim text. Where there is no room for it, it is elided and its tip has the whole.
class ChromeNote : public QWidget {
    Q_OBJECT
public:
    using Font = QFont (*)();
    ChromeNote(const QString& text, QWidget* parent, Font face = ChromeFont::small);

    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void tellWhole(); ///< By the tip, where it is elided.

    QString text_;
};

} // namespace qirn

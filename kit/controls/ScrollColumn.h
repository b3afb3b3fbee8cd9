#pragma once
#include <QScrollArea>

namespace qirn {

/// Scrolls a column of controls up and down, never sideways. It takes no keys; a control that comes to have the focus
/// comes into sight.
class ScrollColumn : public QScrollArea {
    Q_OBJECT
public:
    ScrollColumn(QWidget* column, QWidget* parent); ///< Owns the column.

    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace qirn

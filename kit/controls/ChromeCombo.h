#pragma once
#include <QComboBox>

namespace qirn {

/// A menu of choices beside the canvas: letters, which would pick an entry, go on to the window as its tools' keys.
class ChromeCombo : public QComboBox {
    Q_OBJECT
public:
    using QComboBox::QComboBox;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace qirn

#pragma once
#include <QComboBox>

namespace qirn {

/// The font families of the machine, each in its own face where that has letters.
class FontMenu : public QComboBox {
    Q_OBJECT
public:
    explicit FontMenu(QWidget* parent);
};

} // namespace qirn

#pragma once
#include <QSpinBox>

namespace qirn {

/// A few whole numbers to step through, inside their words: "Grow 1 px".
class ChromeStepper : public QSpinBox {
    Q_OBJECT
public:
    /// `words` has "%1" where the number goes.
    ChromeStepper(const QString& accessibleName, const QString& words, QWidget* parent);

    void stepBy(int steps) override;
};

} // namespace qirn

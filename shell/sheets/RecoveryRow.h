#pragma once
#include "app/files/Recovery.h"

#include <QWidget>

class QPushButton;

namespace qirn {

/// A safety copy in the list of them: its preview, read in the background, what is known of it, and what can be done
/// with it.
class RecoveryRow : public QWidget {
    Q_OBJECT
public:
    RecoveryRow(const Recovery::Item& item, QWidget* parent);

    QPushButton* recoverButton() const { return recover_; }

Q_SIGNALS:
    void recoverPressed();
    void trashPressed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPushButton* recover_;
};

} // namespace qirn

#pragma once
#include "app/files/Recovery.h"

#include <QWidget>

namespace qirn {

/// A safety copy in the list of them: its preview, read in the background, what is known of it, and what can be done
/// with it.
class RecoveryRow : public QWidget {
    Q_OBJECT
public:
    RecoveryRow(const Recovery::Item& item, QWidget* parent);

Q_SIGNALS:
    void recoverPressed();
    void trashPressed();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace qirn

#pragma once
#include "app/files/Recovery.h"

#include <memory>

#include <QWidget>

class QLabel;

namespace qirn {

/// A safety copy in the list of them: its preview and whether the picture was saved since, both read in the background,
/// what else is known of it, and what can be done with it.
class RecoveryRow : public QWidget {
    Q_OBJECT
public:
    RecoveryRow(const Recovery::Item& item, QWidget* parent);

Q_SIGNALS:
    void recoverPressed();
    void trashPressed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void askWhetherSaved(const Recovery::Info& info);

    QLabel* date_;
    std::shared_ptr<bool> life_ =
        std::make_shared<bool>(); // its own; what runs elsewhere looks whether it is there
};

} // namespace qirn

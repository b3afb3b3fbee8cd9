#pragma once
#include "app/files/Recovery.h"
#include "shell/sheets/Sheet.h"

#include <vector>

class QListWidget;
class QPushButton;

namespace qirn {

class PaintModel;

/// The list of safety copies that a crash, power cut or forced quit left behind, each to be recovered or moved to
/// the Trash. Closing it keeps them.
class RecoverySheet : public Sheet {
    Q_OBJECT
public:
    RecoverySheet(PaintModel& model, QWidget* parent);

    void recoverAll();
    void recover(int row);
    void moveToTrash(int row);

private:
    void reload();
    void refreshButtons();
    bool restore(const Recovery::Item& item);

    std::vector<Recovery::Item> items_; // newest first, a row each
    QListWidget* list_;
    QPushButton* recover_;
    QPushButton* trash_;
    QPushButton* recoverAll_;
};

} // namespace qirn

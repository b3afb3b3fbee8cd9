#pragma once
#include "app/files/Recovery.h"

#include <vector>

#include <QDialog>

class QListWidget;
class QPushButton;

namespace qirn {

class PaintModel;

/// The list of safety copies that a crash, power cut or forced quit left behind, each to be recovered or moved to
/// the Trash. Closing it keeps them.
class RecoverySheet : public QDialog {
    Q_OBJECT
public:
    RecoverySheet(PaintModel& model, QWidget* parent);

    bool isEmpty() const;
    void recoverAll();
    void recover(int row);
    void moveToTrash(int row);

private:
    void reload();
    void refreshButtons();
    bool restore(const Recovery::Item& item);

    PaintModel& model_;
    std::vector<Recovery::Item> items_; // newest first, a row each
    QListWidget* list_;
    QPushButton* recover_;
    QPushButton* trash_;
    QPushButton* recoverAll_;
};

} // namespace qirn

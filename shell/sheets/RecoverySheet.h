#pragma once
#include "app/files/Recovery.h"
#include "shell/sheets/Sheet.h"

#include <vector>

class QPushButton;
class QScrollArea;

namespace qirn {

class PaintModel;

/// The list of safety copies that a crash, power cut or forced quit left behind, each to be recovered or moved to the
/// Trash. Closing it keeps them.
class RecoverySheet : public Sheet {
    Q_OBJECT
public:
    RecoverySheet(PaintModel& model, QWidget* parent);

    void recoverAll();
    void recover(std::size_t row);
    void moveToTrash(std::size_t row);

private:
    void reload();
    using Read = SessionRef (*)(const Recovery::Item& item, const Progress& progress);
    void restore(const Recovery::Item& item);
    void add(const Recovery::Item& item, Read read); ///< Throws why it cannot be read.
    /// Where nobody can tell whether another window has these pictures open: whether the user knows better.
    bool mayTake(const std::vector<Recovery::Item>& items, const QString& doIt);

    std::vector<Recovery::Item> items_; // newest first, a row each
    QScrollArea* list_;
    QPushButton* later_;
    QPushButton* recoverAll_;
};

} // namespace qirn

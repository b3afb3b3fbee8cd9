#pragma once
#include "app/files/Recovery.h"
#include "shell/sheets/Sheet.h"

#include <functional>
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
    void recover(const QUuid& id);
    void moveToTrash(const QUuid& id);

private:
    void reload();
    void keepRoom(); ///< For whole rows, which only scroll up and down.
    /// Runs `body`, unless something is being done here or long work runs: presses that were made before come even then.
    void alone(const std::function<void()>& body);
    std::vector<Recovery::Item> itemsOf(const QUuid& id) const; ///< One, or none where its row is gone.
    using Read = SessionRef (*)(const Recovery::Item& item, const Progress& progress);
    void restore(const Recovery::Item& item);
    void add(const Recovery::Item& item, Read read); ///< Throws why it cannot be read.
    /// Where nobody can tell whether another window has these pictures open: whether the user knows better.
    bool mayTake(const std::vector<Recovery::Item>& items, const QString& doIt);

    std::vector<Recovery::Item> items_; // newest first, a row each
    QScrollArea* list_;
    QPushButton* later_;
    QPushButton* recoverAll_;
    bool isAtWork_ = false;
};

} // namespace qirn

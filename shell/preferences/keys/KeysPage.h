#pragma once
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace qirn {

class KeyList;
class PaintModel;
struct KeyOwner;

/// The keys of all commands and tools: searched for, and changed by typing another one. What cannot be is told in words
/// below the list; a key of somebody else can be taken over.
class KeysPage : public QWidget {
    Q_OBJECT
public:
    KeysPage(PaintModel& model, QWidget* parent); ///< Borrows the model.

protected:
    void showEvent(QShowEvent*) override { refresh(); }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void take(int key);                        ///< As typed for the row that is asked for.
    void give(const KeyOwner& owner, int key); ///< Takes it from whoever has it.
    void reset();
    void resetAll();
    void say(const QString& words);

    PaintModel& model_;
    QLineEdit* search_;
    KeyList* list_;
    QLabel* words_;
    QPushButton* takeOver_;
    QPushButton* change_;
    QPushButton* clear_;
    QPushButton* reset_;
    QPushButton* resetAll_;
    int wanted_ = 0; // the key of somebody else that was typed, 0 for none
};

} // namespace qirn

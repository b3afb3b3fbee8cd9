#include "app/commands/PaintCommands.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/CommandRows.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace qirn {

namespace {

const char* kMenuTitles[] = {
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "File"),   QT_TRANSLATE_NOOP("qirn::PaintCommands", "Edit"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Select"), QT_TRANSLATE_NOOP("qirn::PaintCommands", "Image"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Layer"),  QT_TRANSLATE_NOOP("qirn::PaintCommands", "View")};

/// A menu takes "&" for the mark of an access key.
QString plainTitle(QString title) {
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace

PaintCommands::PaintCommands(PaintModel& model, CanvasView& view, QMenuBar& menuBar)
    : QObject(&menuBar),
      model_(model),
      view_(view) {
    for (const char* menuTitle : kMenuTitles) {
        QMenu* menu = menuBar.addMenu(QStringLiteral("&") + tr(menuTitle));
        menu->setObjectName(QLatin1String(menuTitle));
        for (const CommandRow& row : commandRows()) {
            if (qstrcmp(row.menu, menuTitle) != 0) continue;
            if (row.name)
                addRow(row, *menu);
            else
                menu->addSeparator();
        }
    }
    connect(&model, &PaintModel::changed, this, &PaintCommands::refresh);
    refresh();
}

void PaintCommands::addRow(const CommandRow& row, QMenu& menu) {
    QAction* action = nullptr;
    if (row.choices) {
        QMenu* list = menu.addMenu(QString());
        action = list->menuAction();
        connect(list, &QMenu::aboutToShow, this, guarding(model_, [this, list, &row] { fill(*list, row); }));
    } else {
        action = menu.addAction(QString());
        connect(action, &QAction::triggered, this,
                guarding(model_, [this, &row] { runCommand(row, model_, view_); }));
    }
    action->setObjectName(QLatin1String(row.name));
    if (row.title) action->setText(plainTitle(tr(row.title)));
    QList<QKeySequence> keys;
    if (row.key != 0) keys << QKeySequence(row.key);
    for (const int key : row.secondKeys)
        if (key != 0) keys << QKeySequence(key);
    action->setShortcuts(keys);
    action->setCheckable(row.checked != nullptr);
    actions_.emplace_back(&row, action);
}

void PaintCommands::fill(QMenu& list, const CommandRow& row) {
    list.clear();
    for (const CommandChoice& choice : row.choices(model_)) {
        if (choice.title.isEmpty()) {
            list.addSeparator();
            continue;
        }
        QAction* action = list.addAction(plainTitle(choice.title));
        action->setCheckable(choice.isChosen);
        action->setChecked(choice.isChosen);
        connect(action, &QAction::triggered, this, guarding(model_, choice.run));
    }
}

QAction* PaintCommands::action(const QString& objectName) const {
    return parent()->findChild<QAction*>(objectName);
}

void PaintCommands::refresh() {
    for (const auto& [row, action] : actions_) {
        if (row->liveTitle) action->setText(plainTitle(row->liveTitle(model_)));
        if (row->checked) action->setChecked(row->checked(model_));
        action->setEnabled(isEnabled(*row, model_));
    }
}

} // namespace qirn

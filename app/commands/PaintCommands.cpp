#include "app/commands/PaintCommands.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/CommandRows.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace qirn {

namespace {

const char* kMenuTitles[] = {
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "File"),   QT_TRANSLATE_NOOP("qirn::PaintCommands", "Edit"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Select"), QT_TRANSLATE_NOOP("qirn::PaintCommands", "Image"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Layer"),  QT_TRANSLATE_NOOP("qirn::PaintCommands", "View"),
    QT_TRANSLATE_NOOP("qirn::PaintCommands", "Theme"),  QT_TRANSLATE_NOOP("qirn::PaintCommands", "Help")};

/// A menu takes "&" for the mark of an access key.
QString plainTitle(QString title) {
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace

PaintCommands::PaintCommands(PaintModel& model, CanvasView& view, QMenuBar& menuBar)
    : QObject(&menuBar),
      model_(model),
      view_(view),
      window_(*menuBar.window()) {
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
    if (row.choices && !row.title) {
        menu.menuAction()->setObjectName(QLatin1String(row.name));
        return addList(row, menu);
    }
    if (row.choices) {
        QMenu* list = menu.addMenu(QString());
        action = list->menuAction();
        addList(row, *list);
    } else {
        action = menu.addAction(QString());
        connect(action, &QAction::triggered, this,
                guarding(model_, [this, &row] { runCommand(row, model_, view_); }));
    }
    action->setObjectName(QLatin1String(row.name));
    QList<QKeySequence> keys;
    for (const int key : keysOf(row)) keys << QKeySequence(key);
    action->setCheckable(row.checked != nullptr);
    window_.addAction(action); // so that its keys work while the menu bar is hidden
    if (row.key != 0) {
        action->setShortcuts(keys);
    } else if (!keys.isEmpty()) { // the menu would show the first of them
        auto* unshown = new QAction(action);
        unshown->setShortcuts(keys);
        connect(unshown, &QAction::triggered, action, &QAction::trigger);
        window_.addAction(unshown);
    }
    actions_.emplace_back(&row, action);
}

void PaintCommands::addList(const CommandRow& row, QMenu& list) {
    connect(&list, &QMenu::aboutToShow, this,
            guarding(model_, [this, &list, &row] { fill(list, row, model_); }));
}

void PaintCommands::fill(QMenu& list, const CommandRow& row, PaintModel& model) {
    list.clear();
    for (QActionGroup* group : list.findChildren<QActionGroup*>()) delete group;
    auto* oneOfThem = new QActionGroup(&list);
    for (const CommandChoice& choice : row.choices(model)) {
        if (choice.title.isEmpty()) {
            list.addSeparator();
            continue;
        }
        QAction* action = list.addAction(plainTitle(choice.title));
        action->setObjectName(QLatin1String(row.name) + u' ' + choice.title);
        if (choice.isChosen) {
            action->setActionGroup(oneOfThem);
            action->setCheckable(true);
            action->setChecked(*choice.isChosen);
        }
        connect(action, &QAction::triggered, &list, guarding(model, choice.run));
    }
}

QAction* PaintCommands::action(const QString& objectName) const {
    return parent()->findChild<QAction*>(objectName);
}

void PaintCommands::refresh() {
    for (const auto& [row, action] : actions_) {
        action->setText(plainTitle(titleOf(*row, model_)));
        if (row->checked) action->setChecked(row->checked(model_));
        action->setEnabled(isEnabled(*row, model_));
    }
}

} // namespace qirn

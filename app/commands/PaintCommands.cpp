#include "app/commands/PaintCommands.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/CommandRows.h"
#include "app/commands/KeyOwners.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"

#include <algorithm>

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

/// Keys stored for commands that are no more, which would be taken from others for nothing.
void forgetUnknownKeys(PaintModel& model) {
    KeyChoices choices = model.keys();
    choices.forgetWhere([](const QString& name) {
        const auto owners = keyOwners();
        return std::none_of(owners.begin(), owners.end(),
                            [&](const KeyOwner& owner) { return owner.name == name; });
    });
    model.setKeys(choices);
}

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
    forgetUnknownKeys(model);
    for (const char* menuTitle : kMenuTitles) {
        const QString title = tr(menuTitle); // a translation may choose its own key
        QMenu* menu = menuBar.addMenu(title.contains(u'&') ? title : u'&' + title);
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
    action->setCheckable(row.checked != nullptr);
    window_.addAction(action); // so that its keys work while the menu bar is hidden
    actions_.push_back({&row, action, nullptr});
    bindKeys(actions_.back());
}

void PaintCommands::bindKeys(Bound& bound) {
    const int shown = shownKeyOf(*bound.row, keys_);
    QList<QKeySequence> others;
    for (const int key : keysOf(*bound.row, keys_))
        if (key != shown) others << QKeySequence(key);
    bound.action->setShortcut(QKeySequence(shown));
    // A plain key is for what has the keyboard first (`commandOfKey`): the menu only shows it.
    bound.action->setShortcutContext(isPlainKey(shown) ? Qt::WidgetShortcut : Qt::WindowShortcut);
    if (!bound.unshown && !others.isEmpty()) {
        bound.unshown = new QAction(bound.action);
        connect(bound.unshown, &QAction::triggered, bound.action, &QAction::trigger);
        window_.addAction(bound.unshown);
    }
    if (bound.unshown) bound.unshown->setShortcuts(others);
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
    if (keys_ != model_.keys()) {
        keys_ = model_.keys();
        for (Bound& bound : actions_) bindKeys(bound);
    }
    for (const Bound& bound : actions_) {
        bound.action->setText(plainTitle(titleOf(*bound.row, model_)));
        if (bound.row->checked) bound.action->setChecked(bound.row->checked(model_));
        bound.action->setEnabled(isEnabled(*bound.row, model_));
        if (bound.unshown) bound.unshown->setEnabled(bound.action->isEnabled());
    }
}

} // namespace qirn

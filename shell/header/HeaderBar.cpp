#include "shell/header/HeaderBar.h"

#include "app/commands/CommandRows.h"
#include "app/files/DocSession.h"
#include "app/model/Clipboard.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "shell/KeyTips.h"
#include "shell/header/Badge.h"
#include "shell/header/TabStrip.h"
#include "shell/header/ZoomButton.h"

#include <utility>

#include <QDropEvent>
#include <QHBoxLayout>
#include <QMenu>

namespace qirn {

namespace {

struct HeaderButton {
    const char* name; ///< Object name.
    const char* command;
    Icon icon;
    const char* tip; ///< Shown with the key of the command.
};

constexpr HeaderButton kNew{"headerNew", "newCanvas", Icon::plus,
                            QT_TRANSLATE_NOOP("qirn::HeaderBar", "New canvas")};
constexpr HeaderButton kOpen{"headerOpen", "open", Icon::open,
                             QT_TRANSLATE_NOOP("qirn::HeaderBar", "Open a picture or Qirn Paint document")};
constexpr HeaderButton kSave{"headerSave", "save", Icon::save, QT_TRANSLATE_NOOP("qirn::HeaderBar", "Save")};
constexpr HeaderButton kExport{"headerExport", "export", Icon::exportPicture,
                               QT_TRANSLATE_NOOP("qirn::HeaderBar", "Export PNG, JPEG, TIFF or PSD")};
constexpr HeaderButton kUndo{"headerUndo", "undo", Icon::undo, QT_TRANSLATE_NOOP("qirn::HeaderBar", "Undo")};
constexpr HeaderButton kRedo{"headerRedo", "redo", Icon::redo, QT_TRANSLATE_NOOP("qirn::HeaderBar", "Redo")};
constexpr HeaderButton kHelp{"headerHelp", "help", Icon::help,
                             QT_TRANSLATE_NOOP("qirn::HeaderBar", "Qirn Paint Help")};

} // namespace

HeaderBar::HeaderBar(PaintModel& model, CanvasView& view, QWidget* parent)
    : ChromePanel(Surface::bar, Qt::BottomEdge, parent),
      model_(model),
      strip_(new TabStrip(model, this)) {
    setAcceptDrops(true);
    const auto makeButton = [this, &view](const HeaderButton& row) {
        auto* button = new IconButton(row.icon, {}, this);
        button->setObjectName(QLatin1String(row.name));
        tipWithKey(model_, *button, tr(row.tip), commandNamed(row.command));
        connect(button, &IconButton::clicked, this,
                guarding(model_, [this, &view, &command = commandNamed(row.command)] {
                    runCommand(command, model_, view);
                }));
        return button;
    };

    all_ = new IconButton(Icon::chevronDown, tr("All open pictures"), this);
    all_->setObjectName(QStringLiteral("headerPictures"));
    all_->hide();
    auto* list = new QMenu(all_);
    connect(list, &QMenu::aboutToShow, this, [this, list] { fill(*list); });
    connect(all_, &IconButton::clicked, this,
            [this, list] { list->popup(all_->mapToGlobal(QPoint(0, all_->height()))); });
    connect(strip_, &TabStrip::overfullChanged, this, [this] { all_->setVisible(strip_->isOverfull()); });
    auto* fresh = makeButton(kNew);
    auto* open = makeButton(kOpen);
    auto* save = makeButton(kSave);
    auto* exporter = makeButton(kExport);
    auto* undo = makeButton(kUndo);
    auto* redo = makeButton(kRedo);
    auto* help = makeButton(kHelp);
    auto* row = new QHBoxLayout(this);
    row->addWidget(new Badge(this));
    row->addWidget(strip_);
    row->addWidget(all_);
    row->addWidget(fresh);
    row->addStretch();
    row->addWidget(open);
    row->addWidget(save);
    row->addWidget(exporter);
    row->addWidget(new ChromeDivider(this));
    row->addWidget(undo);
    row->addWidget(redo);
    row->addWidget(new ChromeDivider(this));
    row->addWidget(help);
    auto* zoom = new ZoomButton(model, this);
    row->addWidget(zoom);
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        setFixedHeight(m.headerHeight);
        row->setContentsMargins(m.groupGap, 0, m.groupGap, 0);
        row->setSpacing(m.tightGap);
    });

    QWidget* before = all_;
    for (QWidget* button :
         std::initializer_list<QWidget*>{fresh, open, save, exporter, undo, redo, help, zoom})
        setTabOrder(std::exchange(before, button), button);
    connect(&model, &PaintModel::changed, strip_, &TabStrip::refresh);
}

void HeaderBar::fill(QMenu& list) {
    list.clear();
    for (const SessionRef& session : model_.pictures().sessions()) {
        QString title = session->name;
        title.replace(u'&', QStringLiteral("&&")); // no mark of a key
        QAction* action = list.addAction(session->isDirty() ? tr("%1 •").arg(title) : title);
        action->setCheckable(true);
        action->setChecked(session.get() == model_.current());
        connect(action, &QAction::triggered, this, guarding(model_, [this, weak = std::weak_ptr(session)] {
                    if (const SessionRef chosen = weak.lock()) model_.pictures().select(*chosen);
                }));
    }
}

void HeaderBar::dragEnterEvent(QDragEnterEvent* event) {
    event->setDropAction(Qt::CopyAction); // a move would have the source delete its file
    event->accept();
}

void HeaderBar::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    guarded(model_, [&] { event->setAccepted(model_.clipboard().dropAsPictures(*event->mimeData())); });
}

} // namespace qirn

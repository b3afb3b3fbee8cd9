#include "shell/HeaderBar.h"

#include "app/commands/CommandRows.h"
#include "app/files/DocSession.h"
#include "app/model/Clipboard.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "shell/Badge.h"
#include "shell/DocTab.h"
#include "shell/KeyTips.h"
#include "shell/ZoomButton.h"

#include <utility>

#include <QDropEvent>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

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
      strip_(new QScrollArea(this)) {
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

    auto* tabs = new QWidget(strip_);
    tabRow_ = new QHBoxLayout(tabs);
    tabRow_->setContentsMargins(0, 0, 0, 0);
    new_ = makeButton(kNew);
    tabRow_->addWidget(new_);
    tabRow_->addStretch();
    strip_->setWidget(tabs);
    strip_->setWidgetResizable(true);
    strip_->setFrameShape(QFrame::NoFrame);
    strip_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    strip_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    strip_->setFocusPolicy(Qt::NoFocus);
    strip_->viewport()->setAutoFillBackground(false);
    tabs->setAutoFillBackground(false);
    strip_->viewport()->installEventFilter(this);

    auto* open = makeButton(kOpen);
    auto* save = makeButton(kSave);
    auto* exporter = makeButton(kExport);
    auto* undo = makeButton(kUndo);
    auto* redo = makeButton(kRedo);
    auto* help = makeButton(kHelp);
    auto* row = new QHBoxLayout(this);
    row->addWidget(new Badge(this));
    row->addWidget(strip_, 1);
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
        tabRow_->setSpacing(m.tightGap);
    });

    QWidget* before = new_;
    for (QWidget* button : std::initializer_list<QWidget*>{open, save, exporter, undo, redo, help, zoom})
        setTabOrder(std::exchange(before, button), button);
    connect(&model, &PaintModel::changed, this, &HeaderBar::refresh);
    refresh();
}

void HeaderBar::refresh() {
    const auto& sessions = model_.pictures().sessions();
    while (tabs_.size() < sessions.size()) {
        auto* tab = new DocTab(model_, strip_->widget());
        tabRow_->insertWidget(static_cast<int>(tabs_.size()), tab);
        if (!tabs_.empty()) setTabOrder(tabs_.back(), tab);
        setTabOrder(tab, new_);
        tabs_.push_back(tab);
    }
    while (tabs_.size() > sessions.size()) {
        tabs_.back()->hide();
        tabs_.back()->deleteLater(); // its own click handler may be running
        tabs_.pop_back();
    }
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        const bool current = sessions[i].get() == model_.current();
        const bool cameUp = current && !tabs_[i]->isChecked();
        tabs_[i]->showSession(*sessions[i], current);
        if (cameUp)
            QTimer::singleShot(0, tabs_[i], [this, tab = tabs_[i]] { strip_->ensureWidgetVisible(tab); });
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

bool HeaderBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) return ChromePanel::eventFilter(watched, event);
    const QPoint turn = static_cast<QWheelEvent*>(event)->angleDelta();
    QScrollBar& bar = *strip_->horizontalScrollBar();
    bar.setValue(bar.value() - turn.x() - turn.y());
    return true;
}

} // namespace qirn

#include "shell/panels/brush/BrushPanel.h"

#include "app/desktop/HostWords.h"
#include "app/model/Brushes.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/Disclosure.h"
#include "kit/controls/ScrollColumn.h"
#include "kit/controls/SearchField.h"
#include "shell/panels/brush/BrushKeeping.h"
#include "shell/panels/brush/BrushPresetList.h"
#include "shell/panels/brush/BrushSample.h"
#include "shell/panels/brush/BrushSettingRows.h"

#include <QCoreApplication>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>

namespace qirn {

namespace {

RowBox::Dress dressFor(PaintModel& model) {
    return {[](const char* source) { return hostWords(BrushPanel::tr(source)); },
            [&model](const std::function<void()>& body) { guarded(model, body); }, "brush."};
}

QVBoxLayout* columnIn(QWidget* parent) {
    auto* column = new QVBoxLayout(parent);
    column->setContentsMargins(0, 0, 0, 0);
    return column;
}

} // namespace

BrushPanel::BrushPanel(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      noPicture_(new QLabel(tr("No picture open"), this)) {
    head_ = head();
    scroller_ = new ScrollColumn(column(), this);
    setAccessibleName(tr("Brush"));
    noPicture_->setForegroundRole(QPalette::PlaceholderText);
    noPicture_->setAlignment(Qt::AlignCenter);
    auto* all = columnIn(this);
    all->addWidget(noPicture_, 1);
    all->addWidget(head_);
    all->addWidget(scroller_, 1);
    connect(&model, &PaintModel::changed, this, &BrushPanel::refresh);
    connect(presets_, &BrushPresetList::currentMoved, this, &BrushPanel::bringIntoSight);
    showPresets(true);
}

QWidget* BrushPanel::head() {
    auto* head = new QWidget(this);
    sample_ = new BrushSample(model_, head);
    name_ = new QLabel(head);
    name_->setTextFormat(Qt::PlainText);
    name_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    changed_ = new QLabel(tr("changed"), head);
    changed_->setObjectName(QStringLiteral("brushChanged"));
    changed_->setForegroundRole(QPalette::PlaceholderText);
    changed_->setToolTip(tr("The settings differ from the saved preset"));
    disclosure_ = new Disclosure(tr("Presets"), tr("Hide presets"), head);
    disclosure_->setObjectName(QStringLiteral("showPresets"));
    search_ = new SearchField(tr("Search brushes"), head);
    search_->setObjectName(QStringLiteral("searchBrushes"));
    search_->setToolTip(tr("Finds brushes of every tool by name or category"));
    connect(disclosure_, &Disclosure::turned, this, [this](bool open) {
        showPresets(open);
        if (open) showChosen();
    });
    connect(search_, &QLineEdit::textChanged, this, guarding(model_, [this](const QString& words) {
                presets_->setSearch(words);
                showPresets(true);
                scroller_->verticalScrollBar()->setValue(0); // what is found
            }));
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (!search_->text().isEmpty()) presets_->chooseFirst();
    });
    connect(search_, &SearchField::leftDownward, this, [this] { presets_->setFocus(Qt::TabFocusReason); });

    auto* title = new QHBoxLayout;
    title->addWidget(name_, 1);
    title->addWidget(changed_);
    auto* presets = new QHBoxLayout;
    presets->addWidget(disclosure_, 0, Qt::AlignLeft);
    presets->addWidget(search_, 1);
    auto* rows = columnIn(head);
    rows->addWidget(sample_);
    rows->addLayout(title);
    rows->addLayout(presets);
    QirnKit::followMetrics(this, [this, title](const Metrics& m) {
        changed_->setFont(ChromeFont::small());
        title->setContentsMargins(m.inset, 0, m.inset, 0);
        showName();
    });
    return head;
}

QWidget* BrushPanel::column() {
    auto* column = new QWidget(this);
    nothingFound_ = new QLabel(tr("No brush of this name"), column);
    nothingFound_->setForegroundRole(QPalette::PlaceholderText);
    nothingFound_->hide();
    presets_ = new BrushPresetList(model_, column);
    settings_ = new ControlRows<PaintModel>(model_, BrushSettingRows::all(), RowBox::Form::column,
                                            dressFor(model_), column);
    keeping_ = new BrushKeeping(model_, column);
    auto* rows = columnIn(column);
    for (QWidget* part : std::initializer_list<QWidget*>{nothingFound_, presets_, settings_, keeping_})
        rows->addWidget(part);
    rows->addStretch();
    return column;
}

void BrushPanel::showPresets(bool open) {
    disclosure_->setOpen(open);
    search_->setVisible(open);
    presets_->setVisible(open);
    nothingFound_->setVisible(open && presets_->isEmpty());
}

void BrushPanel::bringIntoSight(const QRect& row) {
    if (row.isEmpty()) return;
    const QRect place(presets_->mapTo(scroller_->widget(), row.topLeft()), row.size());
    scroller_->ensureVisible(place.center().x(), place.center().y(), 0, place.height() / 2);
}

void BrushPanel::showChosen() {
    QMetaObject::invokeMethod(
        this,
        [this] {
            presets_->doItemsLayout(); // which are as high as they will be from here on
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            bringIntoSight(presets_->chosenRect());
        },
        Qt::QueuedConnection);
}

void BrushPanel::refresh() {
    if (!isVisible()) return;
    const bool hasPicture = model_.current() != nullptr;
    noPicture_->setVisible(!hasPicture);
    head_->setVisible(hasPicture);
    scroller_->setVisible(hasPicture);
    const Brushes& brushes = model_.brushes();
    Shown now{brushes.activeBrush(), model_.tool(), brushes.userBrushes()};
    if (now == shown_) return;
    if (!shown_ || (shown_->tool != now.tool && !presets_->visibleRegion().isEmpty())) showChosen();
    shown_ = std::move(now);
    const auto saved = brushes.savedPreset(shown_->brush);
    const bool isChanged = saved && *saved != shown_->brush;
    changed_->setVisible(isChanged);
    showName();
    sample_->update();
    presets_->refresh();
    showPresets(disclosure_->isOpen());
    settings_->refresh();
    keeping_->show(saved && !saved->isBuiltIn, isChanged);
}

void BrushPanel::showName() {
    if (!shown_) return;
    const QString& name = shown_->brush.name;
    name_->setText(name_->fontMetrics().elidedText(name, Qt::ElideMiddle, name_->width()));
    name_->setToolTip(name_->text() == name ? QString() : plainTip(name));
}

void BrushPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void BrushPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    showName();
}

} // namespace qirn

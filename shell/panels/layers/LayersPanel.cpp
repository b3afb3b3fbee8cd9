#include "shell/panels/layers/LayersPanel.h"

#include "app/commands/CommandRows.h"
#include "app/desktop/HostWords.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/OpacityPreview.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeCombo.h"
#include "kit/controls/IconButton.h"
#include "kit/rows/ControlRows.h"
#include "shell/KeyTips.h"
#include "shell/panels/layers/LayersList.h"
#include "shell/panels/layers/OnionSection.h"

#include <algorithm>

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace qirn {

namespace {

using Row = ControlRow<PaintModel>;

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::LayersPanel", text)

struct ButtonRow {
    const char* name;
    Icon icon;
    const char* tip;
    void (*run)(PaintModel&);
    bool hasKeyTip = false; ///< Its command is of the same name.
};
constexpr ButtonRow kButtons[] = {
    {"newLayer", Icon::plus, TEXT("New layer"), LayerEdits::addLayer, true},
    {"duplicateLayer", Icon::duplicate, TEXT("Duplicate layer"), LayerEdits::duplicateLayer, true},
    {"deleteLayer", Icon::trash, TEXT("Delete layer"), LayerEdits::deleteLayer},
    {"moveLayerUp", Icon::arrowUp, TEXT("Move layer up"), LayerEdits::moveLayerUp},
    {"moveLayerDown", Icon::arrowDown, TEXT("Move layer down"), LayerEdits::moveLayerDown},
    {"mergeDown", Icon::merge, TEXT("Merge down (⌘E… see Layer menu)"), LayerEdits::mergeDown},
};

template <bool LayerSettings::*kFlag> bool isOn(const PaintModel& model) {
    return model.current() && model.current()->doc().activeLayer().*kFlag;
}
template <bool LayerSettings::*kFlag> void turn(PaintModel& model, bool on) {
    if (const DocSession* session = model.current())
        LayerEdits::setMark(model, session->doc().activeIndex(), kFlag, on);
}
constexpr Row kSwitches[] = {
    {nullptr, Row::Toggle{TEXT("Clip"), TEXT("Clip to the layer below: paint only shows inside it"),
                          isOn<&LayerSettings::isClipping>, turn<&LayerSettings::isClipping>}},
    {nullptr, Row::Toggle{TEXT("Lock"), TEXT("Protects the whole layer from changes"),
                          isOn<&LayerSettings::isLocked>, turn<&LayerSettings::isLocked>}},
    {nullptr, Row::Toggle{TEXT("α Lock"), TEXT("Paint only where this layer already has paint"),
                          isOn<&LayerSettings::alphaLocked>, turn<&LayerSettings::alphaLocked>}},
};

#undef TEXT

RowBox::Dress dressFor(PaintModel& model) {
    return {[](const char* source) { return LayersPanel::tr(source); },
            [&model](const std::function<void()>& body) { guarded(model, body); }};
}

} // namespace

LayersPanel::LayersPanel(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      title_(new QLabel(this)) {
    title_->setForegroundRole(QPalette::PlaceholderText);
    title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* head = new QHBoxLayout;
    head->setSpacing(0);
    head->addWidget(title_, 1);
    std::vector<IconButton*> buttons;
    for (const ButtonRow& row : kButtons) {
        auto* button = new IconButton(row.icon, hostWords(tr(row.tip)), this, &Metrics::smallIcon);
        button->setObjectName(QString::fromLatin1(row.name));
        if (row.hasKeyTip) tipWithKey(model_, *button, tr(row.tip), commandNamed(row.name));
        connect(button, &IconButton::clicked, this, guarding(model_, [this, run = row.run] { run(model_); }));
        head->addWidget(button);
        buttons.push_back(button);
    }
    makeBlend();
    makeOpacity();
    switches_ = new ControlRows<PaintModel>(model, kSwitches, RowBox::Form::bar, dressFor(model), this);
    list_ = new LayersList(model, this);
    onion_ = new OnionSection(model, this);

    auto* mixing = new QHBoxLayout;
    mixing->addWidget(blend_, 1);
    mixing->addWidget(opacity_, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(head);
    column->addLayout(mixing);
    column->addWidget(switches_);
    column->addWidget(list_, 1);
    column->addWidget(onion_);
    for (ChromeToggle* toggle : switches_->findChildren<ChromeToggle*>()) toggle->setCompact();
    QirnKit::followMetrics(this, [this, buttons, column](const Metrics& m) {
        switches_->layout()->setSpacing(m.tightGap);
        title_->setFont(ChromeFont::caption());
        for (IconButton* button : buttons) button->setFixedSize(m.px(24), m.px(24));
        column->setSpacing(m.gap);
        // Its list shows every name whole, however narrow the menu is.
        blend_->view()->setMinimumWidth(blend_->view()->sizeHintForColumn(0) + 2 * m.controlPadding);
    });
    connect(&model, &PaintModel::changed, this, guarding(model, [this] { refresh(); }));
    refresh();
}

void LayersPanel::makeBlend() {
    blend_ = new ChromeCombo(this);
    blend_->setObjectName(QStringLiteral("blendMode"));
    blend_->setAccessibleName(tr("Blend Mode"));
    blend_->setToolTip(tr("Blend mode: how this layer mixes with the layers below"));
    blend_->setFocusPolicy(Qt::TabFocus);
    blend_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (const BlendModeRow& row : kBlendModes)
        blend_->addItem(QCoreApplication::translate("BlendMode", row.displayName));
    connect(blend_, &QComboBox::activated, this, guarding(model_, [this](int mode) {
                if (const DocSession* session = model_.current())
                    LayerEdits::setLayer(
                        model_, session->doc().activeIndex(), tr("Blend Mode"),
                        [mode](Layer& layer) { layer.blendMode = static_cast<BlendMode>(mode); });
            }));
}

void LayersPanel::makeOpacity() {
    opacity_ = new ChromeSlider(tr("Opacity"), {0, 1, 0.01}, NumberFormat::percent(), this);
    opacity_->setObjectName(QStringLiteral("layerOpacity"));
    opacity_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(opacity_, &ChromeSlider::valueChanged, this, guarding(model_, [this](double opacity) {
                if (const DocSession* session = model_.current())
                    model_.opacity().show(session->doc().activeIndex(), opacity);
            }));
    connect(opacity_, &ChromeSlider::editingFinished, this,
            guarding(model_, [this] { model_.opacity().commit(); }));
}

QSize LayersPanel::minimumSizeHint() const {
    const QSize least = layout()->minimumSize(); // the onion skin's words can take more lines
    return {least.width(), std::max(least.height(), layout()->minimumHeightForWidth(width()))};
}

void LayersPanel::refresh() {
    const DocSession* session = model_.current();
    setEnabled(session != nullptr);
    if (!list_->refresh() || !session) return;
    const PaintDocument& doc = session->doc();
    title_->setText(tr("Layers (%L1)").arg(doc.layerCount()));
    const QSignalBlocker blocked(blend_);
    blend_->setCurrentIndex(static_cast<int>(doc.activeLayer().blendMode));
    opacity_->setValue(doc.activeLayer().opacity);
    switches_->refresh();
    onion_->refresh();
}

} // namespace qirn

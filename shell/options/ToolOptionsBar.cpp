#include "shell/options/ToolOptionsBar.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>

#include "app/desktop/HostWords.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/help/QirnHelp.h"
#include "shell/options/ToolOptionRows.h"
#include "shell/options/ViewOptions.h"

namespace qirn {

namespace {

RowBox::Dress dressFor(PaintModel& model) {
    return {[](const char* source) { return hostWords(ToolOptionsBar::tr(source)); },
            [&model](const std::function<void()>& body) { guarded(model, body); }};
}

} // namespace

ToolOptionsBar::ToolOptionsBar(PaintModel& model, CanvasView& view, QWidget* parent)
    : ChromePanel(Surface::bar, Qt::BottomEdge, parent),
      model_(model),
      title_(new QLabel(this)),
      help_(new IconButton(Icon::help, {}, this, &Metrics::smallIcon)),
      options_(new ControlRows<PaintModel>(model, ToolOptionRows::all(), RowBox::Form::bar, dressFor(model),
                                           this)),
      viewOptions_(new ViewOptions(model, view, this)) {
    title_->setObjectName(QStringLiteral("toolTitle"));
    help_->setObjectName(QStringLiteral("toolHelp"));
    connect(help_, &IconButton::clicked, this,
            guarding(model, [this] { QirnHelp::show(QString::fromLatin1(rowOf(model_.tool()).helpTopic)); }));
    auto* row = new QHBoxLayout(this);
    row->addWidget(title_);
    row->addWidget(help_);
    row->addWidget(new ChromeDivider(this));
    row->addWidget(options_, 1);
    row->addWidget(viewOptions_);
    row->addStretch();
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        setFixedHeight(m.optionsHeight);
        row->setContentsMargins(m.groupGap, 0, m.groupGap, 0);
        QFont font = ChromeFont::body();
        font.setWeight(QFont::DemiBold);
        title_->setFont(font);
        int widest = 0; // the options stay where they are whatever the title
        for (const ToolRow& tool : kTools)
            widest = std::max(widest, QFontMetrics(font).horizontalAdvance(toolTitle(tool.tool)));
        title_->setFixedWidth(widest + m.inset);
    });
    connect(&model, &PaintModel::changed, this, &ToolOptionsBar::refresh);
    refresh();
}

void ToolOptionsBar::refresh() {
    title_->setText(toolTitle(model_.tool()));
    help_->setTip(tr("How the %1 tool works").arg(title_->text()));
    const bool movesView = rowOf(model_.tool()).options == OptionGroup::view;
    options_->setVisible(!movesView);
    viewOptions_->setVisible(movesView);
    options_->refresh();
}

} // namespace qirn

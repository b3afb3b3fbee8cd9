#include "shell/preferences/PreferencesView.h"

#include "app/desktop/HostWords.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "shell/preferences/PreferenceRows.h"
#include "shell/preferences/keys/KeysPage.h"

#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

namespace qirn {

namespace {

/// Scrolls upright where the window is too low for its rows.
QScrollArea* scrolling(QWidget* rows) {
    auto* area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    auto* inset = new QWidget;
    auto* column = new QVBoxLayout(inset);
    column->addWidget(rows);
    area->setWidget(inset);
    QirnKit::followMetrics(inset, [column](const Metrics& m) {
        column->setContentsMargins(m.margin, m.groupGap, m.margin, m.groupGap);
    });
    return area;
}

} // namespace

PreferencesView::PreferencesView(PaintModel& model)
    : model_(model),
      tabs_(new QTabBar(this)),
      pages_(new QStackedWidget(this)) {
    setAccessibleName(tr("Preferences"));
    tabs_->setObjectName(QStringLiteral("preferenceSections"));
    tabs_->setAccessibleName(tr("Sections"));
    tabs_->setDrawBase(false);
    const auto section = [this](const QString& title, QWidget* page) {
        tabs_->addTab(QString(title).replace(u'&', QStringLiteral("&&")));
        page->setAccessibleName(title);
        pages_->addWidget(page);
    };
    const RowBox::Dress dress{[](const char* source) { return hostWords(tr(source)); },
                              [&model](const std::function<void()>& body) { guarded(model, body); }};
    const auto rows = [&](const QString& title, std::span<const PreferenceRows::Row> table) {
        auto* box = new ControlRows<PaintModel>(model, table, RowBox::Form::column, dress, this);
        refreshPages_.emplace_back([box] { box->refresh(); });
        section(title, scrolling(box));
    };
    rows(tr("Saving"), PreferenceRows::saving());
    rows(tr("Pen & tablet"), PreferenceRows::pen());
    rows(tr("Canvas"), PreferenceRows::canvas());
    section(tr("Keys"), new KeysPage(model, this));
    auto* others = new QLabel(tr("Themes and interface zoom are in the Theme and View menus."), this);
    others->setObjectName(QStringLiteral("otherPreferences"));
    others->setWordWrap(true);
    others->setForegroundRole(QPalette::PlaceholderText);

    auto* head = new QHBoxLayout;
    head->addWidget(tabs_);
    head->addStretch();
    auto* foot = new QHBoxLayout;
    foot->addWidget(others);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(head);
    column->addWidget(pages_, 1);
    column->addLayout(foot);
    QirnKit::followMetrics(this, [=](const Metrics& m) {
        head->setContentsMargins(m.gap, m.gap, m.gap, 0);
        foot->setContentsMargins(m.margin, m.tightGap, m.margin, m.groupGap);
        others->setFont(ChromeFont::small());
    });
    setFocusProxy(tabs_);
    connect(tabs_, &QTabBar::currentChanged, this, guarding(model, [this](int index) {
                pages_->setCurrentIndex(index);
                refresh();
            }));
    connect(&model, &PaintModel::changed, this, &PreferencesView::refresh);
}

void PreferencesView::refresh() {
    const auto shown = static_cast<std::size_t>(pages_->currentIndex());
    if (isVisible() && shown < refreshPages_.size()) refreshPages_[shown]();
}

} // namespace qirn

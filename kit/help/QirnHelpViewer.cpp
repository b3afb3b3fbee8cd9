#include "kit/help/QirnHelpViewer.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "kit/QirnKit.h"
#include "kit/controls/ChromePanel.h"
#include "kit/controls/IconButton.h"
#include "kit/help/HelpPage.h"
#include "kit/help/QirnHelp.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {

constexpr double kColumnWidth = 264;  // logical pixels at zoom 1
constexpr double kColumnShare = 0.38; // of the window, at most
constexpr int kIdRole = Qt::UserRole;
constexpr int kLongestPast = 50;
constexpr int kRestMilliseconds = 80;

/// Titles of as many lines as they need, with the padding of other rows.
class TitleRows final : public QStyledItemDelegate {
public:
    explicit TitleRows(QListView& list) : QStyledItemDelegate(&list), list_(list) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const Metrics& m = QirnKitHost::metrics();
        const int width = list_.viewport()->width() - 2 * (m.gap + 1);
        const QRect text = option.fontMetrics.boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX),
                                                           Qt::TextWordWrap, index.data().toString());
        return {width, std::max(m.rowHeight, text.height() + 2 * m.px(6))};
    }

private:
    QListView& list_;
};

class TopicList final : public QListWidget {
public:
    explicit TopicList(QWidget* parent) : QListWidget(parent) {
        setItemDelegate(new TitleRows(*this)); // the list owns it
        setFrameShape(QFrame::NoFrame);
        setWordWrap(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        setResizeMode(QListView::Adjust);
        viewport()->setAutoFillBackground(false);
    }
    void keyboardSearch(const QString&) override {} // the field searches
};

} // namespace

QirnHelpViewer::QirnHelpViewer(const QString& initialTopic, QWidget* parent)
    : QWidget(parent),
      column_(new ChromePanel(ChromePanel::Surface::bar, Qt::RightEdge, this)),
      back_(new IconButton(Icon::arrowLeft, tr("Back to the page before"), column_, &Metrics::smallIcon)),
      search_(new QLineEdit(column_)),
      list_(new TopicList(column_)),
      nothing_(new QLabel(column_)),
      page_(new HelpPage(this)) {
    back_->setObjectName(QStringLiteral("helpBack"));
    search_->setObjectName(QStringLiteral("helpSearch"));
    search_->setPlaceholderText(tr("Search help"));
    search_->setAccessibleName(tr("Search help"));
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    list_->setObjectName(QStringLiteral("helpTopics"));
    list_->setAccessibleName(tr("Topics"));
    nothing_->setObjectName(QStringLiteral("helpNothing"));
    nothing_->setTextFormat(Qt::PlainText);
    nothing_->setWordWrap(true);
    page_->setObjectName(QStringLiteral("helpPage"));
    page_->setAccessibleName(tr("Page"));

    auto* top = new QHBoxLayout;
    top->addWidget(back_);
    top->addWidget(search_, 1);
    auto* rows = new QVBoxLayout(column_);
    rows->addLayout(top);
    rows->addWidget(nothing_);
    rows->addWidget(list_, 1);
    auto* across = new QHBoxLayout(this);
    across->addWidget(column_);
    auto* pageRow = new QHBoxLayout; // with room for the ring of the keyboard
    pageRow->addWidget(page_);
    across->addLayout(pageRow, 1);
    across->setContentsMargins(0, 0, 0, 0);
    across->setSpacing(0);
    QirnKit::followMetrics(this, [this, rows, top, pageRow](const Metrics& m) {
        pageRow->setContentsMargins(m.focusWidth, m.focusWidth, m.focusWidth, m.focusWidth);
        rows->setContentsMargins(m.gap, m.groupGap, m.gap, m.gap);
        rows->setSpacing(m.gap);
        top->setSpacing(m.tightGap);
        setColumnWidth();
    });

    connect(search_, &QLineEdit::textChanged, this, &QirnHelpViewer::search);
    atRest_.setSingleShot(true);
    atRest_.setInterval(kRestMilliseconds);
    connect(&atRest_, &QTimer::timeout, this, &QirnHelpViewer::openFirst);
    connect(list_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        atRest_.stop();
        if (item) open(item->data(kIdRole).toString());
    });
    connect(page_, &HelpPage::linkChosen, this, &QirnHelpViewer::followLink);
    connect(back_, &IconButton::clicked, this, &QirnHelpViewer::goBack);
    connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, this, &QirnHelpViewer::goBack);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        search_->setFocus(Qt::ShortcutFocusReason);
        search_->selectAll();
    });
    page_->installEventFilter(this);
    setFocusProxy(search_);
    back_->setEnabled(false);
    current_ = initialTopic;
    topicsChanged();
}

void QirnHelpViewer::search() {
    fill();
    atRest_.start(); // a long page takes longer than the next key
}

void QirnHelpViewer::openFirst() {
    if (search_->text().trimmed().isEmpty() || list_->count() == 0) return;
    open(list_->item(0)->data(kIdRole).toString());
}

void QirnHelpViewer::fill() {
    const QString query = search_->text();
    const auto found = QirnHelp::search(query);
    const QSignalBlocker blocker(list_);
    list_->clear();
    for (const QirnHelpTopic& topic : found) {
        auto* item = new QListWidgetItem(topic.title, list_); // the list owns it
        item->setData(kIdRole, topic.id);
    }
    choose();
    list_->setVisible(!found.empty());
    nothing_->setVisible(found.empty());
    nothing_->setText(tr("Nothing found for \"%1\".").arg(query.trimmed()));
}

void QirnHelpViewer::choose() {
    const QSignalBlocker blocker(list_);
    list_->setCurrentRow(-1);
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->data(kIdRole).toString() == current_) list_->setCurrentRow(row);
    }
}

void QirnHelpViewer::open(const QString& topic) {
    const QirnHelpTopic* found = QirnHelp::topicWithId(topic);
    if (!found) return;
    current_ = topic;
    page_->showText(found->title, found->body);
    choose();
}

void QirnHelpViewer::goTo(const QString& topic) {
    open(topic);
    if (!list_->currentItem()) search_->clear(); // a page is always one of the list
    atRest_.stop();
}

void QirnHelpViewer::followLink(const QString& topic) {
    past_ << current_;
    if (past_.size() > kLongestPast) past_.removeFirst();
    back_->setEnabled(true);
    goTo(topic);
}

void QirnHelpViewer::goBack() {
    if (past_.isEmpty()) return;
    goTo(past_.takeLast());
    back_->setEnabled(!past_.isEmpty());
}

void QirnHelpViewer::topicsChanged() {
    fill();
    open(QirnHelp::topicWithId(current_) ? current_ : QirnHelp::allTopics().front().id);
}

void QirnHelpViewer::resizeEvent(QResizeEvent* event) {
    setColumnWidth();
    QWidget::resizeEvent(event);
}

void QirnHelpViewer::paintEvent(QPaintEvent*) {
    if (!page_->hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
    const Metrics& m = QirnKitHost::metrics();
    QPainter painter(this);
    const QMargins ring(m.focusWidth, m.focusWidth, m.focusWidth, m.focusWidth);
    ChromePaint::focusRing(painter, page_->geometry() + ring, m.smallRadius);
}

void QirnHelpViewer::setColumnWidth() {
    const int wished = QirnKitHost::metrics().px(kColumnWidth);
    column_->setFixedWidth(std::min(wished, static_cast<int>(width() * kColumnShare)));
}

// Up and down choose in the list while the words are typed; Escape empties the field before it closes the window.
bool QirnHelpViewer::eventFilter(QObject* watched, QEvent* event) {
    if (watched == page_) {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const int step = key == Qt::Key_Down ? 1 : key == Qt::Key_Up ? -1 : 0;
    const bool clears = key == Qt::Key_Escape && !search_->text().isEmpty();
    if (step == 0 && !clears) return QWidget::eventFilter(watched, event);
    event->accept();
    if (event->type() == QEvent::ShortcutOverride) return true;
    if (clears)
        search_->clear();
    else if (list_->count() > 0)
        list_->setCurrentRow(std::clamp(list_->currentRow() + step, 0, list_->count() - 1));
    return true;
}

} // namespace qirn

#include "shell/sheets/Sheet.h"

#include "app/desktop/keys/Typing.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <utility>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace qirn {

Sheet::Sheet(PaintModel& model, const QString& title, const QString& subtitle, QWidget* parent)
    : QWidget(parent),
      model_(model),
      subtitle_(new QLabel(subtitle, this)),
      fields_(new QVBoxLayout),
      foot_(new QHBoxLayout) {
    setAccessibleName(title);
    auto* heading = new QLabel(title, this);
    heading->setObjectName(QStringLiteral("sheetTitle"));
    subtitle_->setWordWrap(true);
    subtitle_->setHidden(subtitle.isEmpty());
    subtitle_->setForegroundRole(QPalette::PlaceholderText);
    auto* header = new QVBoxLayout;
    header->addWidget(heading);
    header->addWidget(subtitle_);
    foot_->addStretch();
    auto* column = new QVBoxLayout(this);
    column->addLayout(header);
    column->addLayout(fields_, 1);
    column->addLayout(foot_);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        heading->setFont(ChromeFont::title());
        header->setSpacing(m.tightGap);
        fields_->setSpacing(m.groupGap);
        foot_->setSpacing(m.gap);
        column->setSpacing(m.margin);
        column->setContentsMargins(m.margin, m.margin, m.margin, m.margin);
    });
}

void Sheet::setLeastWidth(double width) {
    leastWidth_ = width;
    updateGeometry();
}

QSize Sheet::minimumSizeHint() const {
    return QWidget::minimumSizeHint().expandedTo({QirnKitHost::metrics().px(leastWidth_), 0});
}

void Sheet::setSubtitle(const QString& subtitle) {
    subtitle_->setText(subtitle);
    subtitle_->setHidden(subtitle.isEmpty());
}

QLabel* Sheet::paragraph(const QString& text) {
    auto* label = new QLabel(text, this);
    label->setWordWrap(true);
    return label;
}

QPushButton* Sheet::addButton(const QString& text, Role role) {
    auto* button = new QPushButton(text, this);
    if (role == Role::other)
        foot_->insertWidget(others_++, button);
    else
        foot_->addWidget(button);
    if (role == Role::cancel) connect(button, &QPushButton::clicked, this, [this] { model_.closeSheet(); });
    if (role == Role::standard) {
        default_ = button;
        button->setDefault(true);
        new TypingKeys(*this, *button, TypingKeys::Means::window);
    }
    return button;
}

void Sheet::closeAnd(std::function<void()> work) {
    soon(model_, std::move(work));
    model_.closeSheet();
}

void Sheet::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::box(painter, rect(), QirnKitHost::metrics().radius, c.panel, c.edge);
}

} // namespace qirn

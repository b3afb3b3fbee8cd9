#include "kit/controls/MessageBox.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"

namespace qirn {

namespace {

/// A word longer than a line, as a file's name can be, may be broken at any of its signs.
QString breakable(const QString& text) {
    constexpr int kLongWord = 30;
    QString result;
    int word = 0;
    for (const QChar sign : text) {
        word = sign.isSpace() ? 0 : word + 1;
        if (word > kLongWord && !sign.isLowSurrogate() && !sign.isMark()) result += QChar(0x200B);
        result += sign;
    }
    return result;
}

} // namespace

MessageBox::MessageBox(const QString& title, const QString& text, const QStringList& buttons,
                       int cancelButton, int defaultButton, QWidget* parent)
    : QDialog(parent),
      answer_(cancelButton) {
    setAccessibleName(title);
    setAccessibleDescription(text);
    auto* heading = new QLabel(breakable(title), this);
    auto* why = new QLabel(breakable(text), this);
    heading->setObjectName(QStringLiteral("messageTitle"));
    why->setObjectName(QStringLiteral("messageText"));
    auto* row = new QDialogButtonBox(this);
    auto* column = new QVBoxLayout(this);
    for (QLabel* label : {heading, why}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setHidden(label->text().isEmpty());
        column->addWidget(label);
    }
    column->addWidget(row);
    for (const QString& label : buttons) {
        const auto index = static_cast<int>(buttons_.size());
        const auto role = index == cancelButton ? QDialogButtonBox::RejectRole
                          : buttons_.isEmpty()  ? QDialogButtonBox::AcceptRole
                                                : QDialogButtonBox::DestructiveRole;
        buttons_ << row->addButton(QString(label).replace(u'&', QStringLiteral("&&")), role);
        connect(buttons_.last(), &QPushButton::clicked, this, [this, index] {
            answer_ = index;
            accept();
        });
    }
    if (defaultButton < buttons_.size()) {
        buttons_[defaultButton]->setDefault(true);
        buttons_[defaultButton]->setFocus(); // or the one that stands first would be pressed
    }
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        heading->setFont(ChromeFont::title());
        column->setContentsMargins(m.margin, m.margin, m.margin, m.margin);
        column->setSpacing(m.gap);
        row->setContentsMargins(0, m.gap, 0, 0);
        const int width = std::max(m.px(440), column->totalMinimumSize().width());
        setFixedSize(width, column->totalHeightForWidth(width));
    });
}

int MessageBox::ask() {
    exec();
    return answer_;
}

} // namespace qirn

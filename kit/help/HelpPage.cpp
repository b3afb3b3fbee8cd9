#include "kit/help/HelpPage.h"

#include <algorithm>

#include <QDesktopServices>
#include <QEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QUrl>

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/help/HelpText.h"
#include "kit/help/QirnHelp.h"

namespace qirn {

namespace {

constexpr int kLineLength = 620;    // logical pixels at zoom 1: about ninety letters
constexpr double kLineHeight = 140; // percent
constexpr int kLongestLead = 40;    // letters
constexpr double kTabPlace = 340;   // where the second column of a list begins
const QString kTopicScheme = QStringLiteral("topic");

/// How many letters of a bullet name what the rest of it tells, up to a colon.
qsizetype leadOf(const HelpParagraph& paragraph) {
    if (paragraph.kind != HelpParagraph::Kind::bullet) return 0;
    const QString& text = paragraph.pieces.front().text;
    const qsizetype colon = text.indexOf(QStringLiteral(": "));
    const bool isName =
        colon > 0 && colon <= kLongestLead && !text.left(colon).contains(u'.') && !text.contains(u'\t');
    return isName ? colon : 0;
}

/// Writes one text into a document.
class Writer {
public:
    explicit Writer(QTextDocument& document) : cursor_(&document) {
        const Metrics& m = QirnKitHost::metrics();
        document.clear();
        document.setDocumentMargin(0);
        document.setIndentWidth(m.margin);
        document.setDefaultFont(ChromeFont::body());
        plain_.setForeground(QirnKitHost::colors().text);
    }

    void title(const QString& text) {
        QTextCharFormat format = plain_;
        format.setFont(ChromeFont::title());
        block(0, QirnKitHost::metrics().gap);
        cursor_.insertText(text, format);
    }

    void paragraph(const HelpParagraph& paragraph) {
        const Metrics& m = QirnKitHost::metrics();
        const bool isHeading = paragraph.kind == HelpParagraph::Kind::heading;
        block(isHeading ? m.groupGap : 0, isHeading ? m.tightGap : m.gap);
        if (paragraph.kind == HelpParagraph::Kind::bullet) {
            QTextListFormat bullets;
            bullets.setStyle(QTextListFormat::ListDisc);
            cursor_.createList(bullets);
        }
        QTextCharFormat format = plain_;
        QTextCharFormat strong = plain_;
        strong.setFontWeight(QFont::DemiBold);
        if (isHeading) format = strong;
        qsizetype lead = leadOf(paragraph);
        for (const HelpParagraph::Piece& piece : paragraph.pieces) {
            const QirnHelpTopic* topic = QirnHelp::topicWithId(piece.topic);
            if (topic) {
                link(topic->title, kTopicScheme + u':' + topic->id);
            } else {
                words(piece.text.left(lead), strong);
                words(piece.text.mid(lead) + piece.topic, format);
            }
            lead = 0;
        }
    }

private:
    void block(int above, int below) {
        QTextBlockFormat format;
        format.setTopMargin(above);
        format.setBottomMargin(below);
        format.setLineHeight(kLineHeight, QTextBlockFormat::ProportionalHeight);
        format.setTabPositions({{QirnKitHost::metrics().px(kTabPlace) * 1.0, QTextOption::LeftTab}});
        if (cursor_.atStart())
            cursor_.setBlockFormat(format);
        else
            cursor_.insertBlock(format, plain_);
    }

    /// Addresses of the web are links as they stand.
    void words(const QString& text, const QTextCharFormat& format) {
        const qsizetype from = text.indexOf(QStringLiteral("https://"));
        qsizetype to = from;
        while (to >= 0 && to < text.size() && !text[to].isSpace() && text[to] != u',') ++to;
        if (to > from && text[to - 1] == u'.') --to;
        cursor_.insertText(from < 0 ? text : text.left(from), format);
        if (from < 0) return;
        link(text.mid(from, to - from), text.mid(from, to - from));
        cursor_.insertText(text.mid(to), format);
    }

    void link(const QString& text, const QString& address) {
        QTextCharFormat format = plain_;
        format.setAnchor(true);
        format.setAnchorHref(address);
        format.setFontUnderline(true);
        cursor_.insertText(text, format);
    }

    QTextCursor cursor_;
    QTextCharFormat plain_;
};

} // namespace

HelpPage::HelpPage(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false); // on the surface of its window
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& address) {
        if (address.scheme() == kTopicScheme)
            Q_EMIT linkChosen(address.path());
        else
            QDesktopServices::openUrl(address);
    });
}

void HelpPage::showText(const QString& title, const QString& body) {
    if (title == title_ && body == body_) return;
    title_ = title;
    body_ = body;
    build();
    verticalScrollBar()->setValue(0);
}

void HelpPage::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::StyleChange && event->type() != QEvent::PaletteChange) return;
    QScrollBar& bar = *verticalScrollBar();
    const double read = bar.maximum() > 0 ? double(bar.value()) / bar.maximum() : 0;
    build();
    bar.setValue(int(read * bar.maximum() + 0.5));
}

void HelpPage::resizeEvent(QResizeEvent* event) {
    setMargins();
    QTextBrowser::resizeEvent(event);
}

void HelpPage::setMargins() {
    const Metrics& m = QirnKitHost::metrics();
    const int spare = viewport()->width() - 2 * m.margin - m.px(kLineLength);
    QTextFrameFormat frame = document()->rootFrame()->frameFormat();
    frame.setMargin(m.margin);
    frame.setRightMargin(m.margin + std::max(0, spare));
    document()->rootFrame()->setFrameFormat(frame);
}

void HelpPage::build() {
    document()->setUndoRedoEnabled(false);
    Writer writer(*document());
    if (!title_.isEmpty()) writer.title(title_);
    for (const HelpParagraph& paragraph : paragraphsOf(body_)) writer.paragraph(paragraph);
    setMargins();
    moveCursor(QTextCursor::Start); // writing took it along
}

} // namespace qirn

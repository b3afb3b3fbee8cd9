#pragma once
#include <QTextBrowser>

namespace qirn {

/// Shows a title and a body with the marks of the manual, in lines of a readable length, by the theme and the zoom of
/// the moment.
class HelpPage : public QTextBrowser {
    Q_OBJECT
public:
    explicit HelpPage(QWidget* parent);

    void showText(const QString& title,
                  const QString& body); ///< From its beginning, where it is another text.

Q_SIGNALS:
    void linkChosen(const QString& topic);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void build();
    void setMargins(); ///< Lines end where they are long enough.

    QString title_, body_;
};

} // namespace qirn

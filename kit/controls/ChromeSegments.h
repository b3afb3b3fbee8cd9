#pragma once
#include <QWidget>

class QButtonGroup;

namespace qirn {

/// A row of words of which one is chosen.
class ChromeSegments : public QWidget {
    Q_OBJECT
public:
    ChromeSegments(const QString& accessibleName, const QStringList& titles, QWidget* parent);

    int chosen() const;
    void setChosen(int index); ///< Emits nothing.

Q_SIGNALS:
    void picked(int index); ///< By the user.

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup* buttons_;
};

} // namespace qirn

#pragma once
#include <QWidget>

namespace qirn {

/// The program's name as its mark: "Qirn PAINT".
class Badge : public QWidget {
    Q_OBJECT
public:
    explicit Badge(QWidget* parent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace qirn

#pragma once
#include <QWidget>

namespace qirn {

/// A plain surface of the window, with hairlines along some of its sides.
class ChromePanel : public QWidget {
    Q_OBJECT
public:
    enum class Surface { bar, panel };
    ChromePanel(Surface surface, Qt::Edges lines, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Surface surface_;
    Qt::Edges lines_;
};

/// An upright hairline between two groups of a bar.
class ChromeDivider : public QWidget {
    Q_OBJECT
public:
    explicit ChromeDivider(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace qirn

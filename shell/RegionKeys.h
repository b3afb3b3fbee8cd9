#pragma once
#include <vector>

#include <QObject>

class QWidget;

namespace qirn {

/// F6 takes the keyboard from one region of a window to the next, Shift+F6 to the one before, round the ends. Regions that
/// are hidden are passed over.
class RegionKeys : public QObject {
    Q_OBJECT
public:
    /// Belongs to the window, whose parts the regions are. Focus outside of all of them goes to the first or last one.
    RegionKeys(QWidget& window, std::vector<QWidget*> regions);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool focusNeighbor(int step);

    std::vector<QWidget*> regions_;
};

} // namespace qirn

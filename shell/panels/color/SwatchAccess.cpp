#include "shell/panels/color/SwatchAccess.h"

#include "shell/panels/color/SwatchGrid.h"

#include <memory>
#include <unordered_map>

#include <QAccessibleWidget>
#include <QPointer>

namespace qirn {

namespace {

/// One color of a grid. It outlives its color where the grid gets others, and then is not valid.
class Swatch : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    Swatch(SwatchGrid* grid, int index) : grid_(grid), index_(index) {}

    bool isValid() const override { return grid_ && index_ < static_cast<int>(grid_->colors().size()); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(grid_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? grid_->nameOf(index_) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QRect rect() const override {
        if (!isValid()) return {};
        const QRect cell = grid_->cell(index_).toAlignedRect();
        return {grid_->mapToGlobal(cell.topLeft()), cell.size()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        state.focusable = true;
        state.selectable = true;
        state.focused = isValid() && grid_->hasFocus() && grid_->current() == index_;
        state.offscreen =
            !isValid() || !grid_->visibleRegion().intersects(grid_->cell(index_).toAlignedRect());
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (isValid() && name == pressAction()) Q_EMIT grid_->picked(index_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<SwatchGrid> grid_;
    int index_;
};

class Grid : public QAccessibleWidget {
public:
    explicit Grid(SwatchGrid* grid) : QAccessibleWidget(grid, QAccessible::List) {}
    ~Grid() override {
        for (const auto& [index, id] : ids_) QAccessible::deleteAccessibleInterface(id);
    }
    Grid(const Grid&) = delete;
    Grid& operator=(const Grid&) = delete;

    int childCount() const override { return static_cast<int>(grid().colors().size()); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        const auto known = ids_.find(index);
        if (known != ids_.end()) return QAccessible::accessibleInterface(known->second);
        auto swatch = std::make_unique<Swatch>(&grid(), index);
        ids_[index] = QAccessible::registerAccessibleInterface(swatch.get()); // which owns it
        return swatch.release();
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override {
        for (const auto& [index, id] : ids_)
            if (QAccessible::accessibleInterface(id) == wanted) return index;
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(grid().indexAt(grid().mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override {
        return grid().hasFocus() ? child(grid().current()) : nullptr;
    }

private:
    SwatchGrid& grid() const { return *static_cast<SwatchGrid*>(object()); }

    mutable std::unordered_map<int, QAccessible::Id> ids_; // of the colors that were asked for
};

QAccessibleInterface* accessOf(const QString&, QObject* object) {
    auto* grid = qobject_cast<SwatchGrid*>(object);
    return grid ? std::make_unique<Grid>(grid).release() : nullptr; // the accessibility cache owns it
}

} // namespace

void installSwatchAccess() {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(accessOf), true);
}

} // namespace qirn

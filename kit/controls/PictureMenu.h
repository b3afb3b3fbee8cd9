#pragma once
#include <QMenu>
#include <QStyleOptionMenuItem>

namespace qirn {

/// A menu whose entries may show a picture before their words: the icon of the action, at the menu's size.
class PictureMenu : public QMenu {
    Q_OBJECT
public:
    /// The size is asked for whenever the menu is laid out, in the display's logical pixels.
    PictureMenu(const QString& title, QSize (*pictureSize)(), QWidget* parent)
        : QMenu(title, parent),
          pictureSize_(pictureSize) {}

    /// The size of an entry's picture; none where it has no icon, or where the menu is a plain one or null.
    static QSize pictureOf(const QStyleOptionMenuItem& entry, const QWidget* menu) {
        const auto* pictures = qobject_cast<const PictureMenu*>(menu);
        return pictures && !entry.icon.isNull() ? pictures->pictureSize_() : QSize();
    }

private:
    QSize (*pictureSize_)();
};

} // namespace qirn

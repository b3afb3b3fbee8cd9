#include "kit/controls/ChromeCombo.h"

#include <QKeyEvent>

namespace qirn {

void ChromeCombo::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (event->key() != Qt::Key_Space && !text.isEmpty() && text.front().isPrint())
        event->ignore();
    else
        QComboBox::keyPressEvent(event);
}

} // namespace qirn

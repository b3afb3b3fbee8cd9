#include "program/ProgramIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

// Outside of any namespace, as its macro wants it.
static void useResource() {
    Q_INIT_RESOURCE(program);
}

namespace qirn {

QIcon programIcon() {
    useResource();
    QSvgRenderer drawing(QStringLiteral(":/qirn/program.svg"));
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace qirn

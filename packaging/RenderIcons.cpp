// Draws an icon at the sizes that desktops ask for, while the program is built:
//     render_icons ICON.svg FOLDER SIZE...     writes FOLDER/SIZE.png for each
#include <cstdio>
#include <span>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

int main(int argc, char** argv) {
    const std::span words(argv, static_cast<std::size_t>(argc));
    if (words.size() < 4) return 2;
    QSvgRenderer icon(QString::fromLocal8Bit(words[1]));
    const QDir folder(QString::fromLocal8Bit(words[2]));
    bool isDone = icon.isValid() && folder.mkpath(QStringLiteral("."));
    for (const char* word : words.subspan(3)) {
        const int size = QByteArray(word).toInt();
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            icon.render(&painter);
        }
        isDone = isDone && image.save(folder.filePath(QString::number(size) + QStringLiteral(".png")));
    }
    if (!isDone) std::fprintf(stderr, "render_icons: %s could not be drawn\n", words[1]);
    return isDone ? 0 : 1;
}

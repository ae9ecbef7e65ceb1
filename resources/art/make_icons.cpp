// Renders the program's icon from its SVG into the PNG sizes a desktop
// looks for:
//   make_icons resources/icons/satwalk.svg resources/icons
// writes satwalk-48.png and satwalk-128.png into the folder.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: make_icons SVG_FILE OUTPUT_FOLDER\n", stderr);
        return 2;
    }
    QGuiApplication app(argc, argv);
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) {
        std::fprintf(stderr, "make_icons: cannot read %s\n", argv[1]);
        return 1;
    }
    for (const int size : {48, 128}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        svg.render(&painter);
        painter.end();
        const QString out =
            QString::fromLocal8Bit(argv[2]) + QStringLiteral("/satwalk-%1.png").arg(size);
        if (!image.save(out)) {
            std::fprintf(stderr, "make_icons: cannot write %s\n", qPrintable(out));
            return 1;
        }
    }
    return 0;
}

// icons: draws the program's SVG icon as the PNG sizes of the freedesktop icon theme, at build
// time. "icons SVG DIR" writes DIR/<n>x<n>/apps/org.mirepan.mirepan.png for each size.

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fputs("usage: icons SVG DIR\n", stderr);
        return 2;
    }
    const QString svg = QString::fromLocal8Bit(argv[1]);
    const QDir out(QString::fromLocal8Bit(argv[2]));
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        QImageReader reader(svg);
        reader.setScaledSize(QSize(size, size));
        const QImage image = reader.read();
        const QString dir = QStringLiteral("%1x%1/apps").arg(size);
        if (image.isNull() || !out.mkpath(dir) ||
            !image.save(out.filePath(dir + QStringLiteral("/org.mirepan.mirepan.png")))) {
            std::fprintf(stderr, "icons: cannot draw %s at %d: %s\n", argv[1], size, qPrintable(reader.errorString()));
            return 1;
        }
    }
    return 0;
}

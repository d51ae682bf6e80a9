// Draws the XMP icons (XMPIcon_Dark, XMPIcon_Light) into the folder given as
// argument. The PNGs are committed as source assets; run this again only to
// change their look:
//   g++ -std=c++20 -fPIC DrawXMPIcons.cpp $(pkg-config --cflags --libs Qt6Gui) -o /tmp/drawxmpicons
//   QT_QPA_PLATFORM=offscreen /tmp/drawxmpicons resources/images
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>

namespace {

const QColor kXmpRed(0xd7, 0x1f, 0x26);
const QColor kXmpRedOnDark(0xf0, 0x5a, 0x5a);

// The letters X, M and P as strokes in a 16 by 16 tile: a font this small
// smears, strokes on half pixels stay crisp.
QPainterPath Letters()
{
    QPainterPath path;
    const qreal top = 5.0, bottom = 11.0;
    // X
    path.moveTo(1.5, top);
    path.lineTo(4.5, bottom);
    path.moveTo(4.5, top);
    path.lineTo(1.5, bottom);
    // M
    path.moveTo(6.5, bottom);
    path.lineTo(6.5, top);
    path.lineTo(8.5, 8.5);
    path.lineTo(10.5, top);
    path.lineTo(10.5, bottom);
    // P
    path.moveTo(12.3, bottom);
    path.lineTo(12.3, top);
    path.lineTo(13.6, top);
    path.arcTo(QRectF(12.3, top, 2.6, 3.2), 90, -180);
    path.lineTo(12.3, top + 3.2);
    return path;
}

bool Save(QString const &folder, char const *name, QColor const &tile, QColor const &ink, bool filled)
{
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        if (filled) {
            p.setPen(Qt::NoPen);
            p.setBrush(tile);
            p.drawRoundedRect(QRectF(0.0, 1.0, 16.0, 14.0), 2.5, 2.5);
        } else {
            p.setPen(QPen(tile, 1.0));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(QRectF(0.5, 1.5, 15.0, 13.0), 2.5, 2.5);
        }
        p.setPen(QPen(ink, 1.1, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
        p.setBrush(Qt::NoBrush);
        p.drawPath(Letters());
    }
    const QString path = QDir(folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
    if (!image.save(path, "PNG")) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <folder>\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    bool ok = true;
    // For dark backgrounds: light letters in a light red frame.
    ok &= Save(folder, "XMPIcon_Dark", kXmpRedOnDark, QColor(0xf2, 0xf2, 0xf2), false);
    // For light backgrounds: white letters on the red tile of the logo.
    ok &= Save(folder, "XMPIcon_Light", kXmpRed, Qt::white, true);
    return ok ? 0 : 1;
}

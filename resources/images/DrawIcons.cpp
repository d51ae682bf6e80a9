// Draws the library's icons and logos into the folder given as argument.
// The PNGs are committed as source assets; run this again only to change
// their look:
//   g++ -std=c++20 -fPIC DrawIcons.cpp $(pkg-config --cflags --libs Qt6Gui) -o /tmp/drawicons
//   QT_QPA_PLATFORM=offscreen /tmp/drawicons resources/images
#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>

namespace {

const QColor kInk(0x45, 0x4a, 0x52);
const QColor kRed(0xc8, 0x3a, 0x32);
const QColor kAmber(0xf2, 0xb1, 0x1b);
const QColor kBlue(0x2b, 0x72, 0xc9);
const QColor kXmpRed(0xd7, 0x1f, 0x26);

bool Save(QString const &folder, char const *name, int w, int h, std::function<void(QPainter &)> const &draw)
{
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::TextAntialiasing);
        draw(p);
    }
    const QString path = QDir(folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
    if (!image.save(path, "PNG")) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}

// One rounded chain link, centred on (cx, cy), turned by `angle` degrees.
void DrawLink(QPainter &p, qreal cx, qreal cy, qreal angle, QColor const &color, qreal length = 8.4)
{
    p.save();
    p.translate(cx, cy);
    p.rotate(angle);
    p.setPen(QPen(color, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(-length / 2, -2.4, length, 4.8), 2.4, 2.4);
    p.restore();
}

void DrawLinkIcon(QPainter &p)
{
    DrawLink(p, 5.6, 10.4, -45, kInk);
    DrawLink(p, 10.4, 5.6, -45, kInk);
}

void DrawUnlinkIcon(QPainter &p)
{
    DrawLink(p, 4.6, 11.4, -45, kInk, 7.0);
    DrawLink(p, 11.4, 4.6, -45, kInk, 7.0);
    // Sparks across the gap between the two halves.
    p.setPen(QPen(kRed, 1.4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(9.6, 9.6), QPointF(11.6, 11.6));
    p.drawLine(QPointF(6.4, 6.4), QPointF(4.4, 4.4));
}

void DrawDeleteIcon(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kRed);
    p.drawEllipse(QRectF(1.0, 1.0, 14.0, 14.0));
    p.setPen(QPen(Qt::white, 2.0, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(5.3, 5.3), QPointF(10.7, 10.7));
    p.drawLine(QPointF(10.7, 5.3), QPointF(5.3, 10.7));
}

void DrawAlertIcon(QPainter &p)
{
    QPainterPath triangle;
    triangle.moveTo(8.0, 1.2);
    triangle.lineTo(15.2, 14.4);
    triangle.lineTo(0.8, 14.4);
    triangle.closeSubpath();
    p.setPen(QPen(QColor(0xb9, 0x80, 0x0c), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(kAmber);
    p.drawPath(triangle);
    p.setPen(QPen(QColor(0x2a, 0x22, 0x10), 1.8, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(8.0, 5.6), QPointF(8.0, 9.6));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x2a, 0x22, 0x10));
    p.drawEllipse(QPointF(8.0, 12.2), 1.05, 1.05);
}

void DrawInfoIcon(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kBlue);
    p.drawEllipse(QRectF(1.0, 1.0, 14.0, 14.0));
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(8.0, 4.9), 1.15, 1.15);
    p.setPen(QPen(Qt::white, 2.0, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(8.0, 7.6), QPointF(8.0, 11.6));
}

// "XMP" in white on a red rounded tile.
void DrawXmpTile(QPainter &p, QRectF const &tile, qreal pixelSize)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kXmpRed);
    p.drawRoundedRect(tile, 2.5, 2.5);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setBold(true);
    font.setPixelSize(static_cast<int>(pixelSize));
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.4);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(tile, Qt::AlignCenter, QStringLiteral("XMP"));
}

void DrawPoweredByLarge(QPainter &p)
{
    QFont small(QStringLiteral("DejaVu Sans"));
    small.setPixelSize(9);
    p.setFont(small);
    p.setPen(kInk);
    p.drawText(QRectF(0, 0, 72, 11), Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("powered by"));
    DrawXmpTile(p, QRectF(10.5, 12.5, 51, 20), 15);
}

void DrawPoweredBySmall(QPainter &p)
{
    QFont small(QStringLiteral("DejaVu Sans"));
    small.setPixelSize(10);
    p.setFont(small);
    p.setPen(kInk);
    p.drawText(QRectF(0, 0, 68, 15), Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("powered by"));
    DrawXmpTile(p, QRectF(71.5, 0.5, 33, 14), 10);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    bool ok = true;
    ok &= Save(folder, "Delete_Sm", 16, 16, DrawDeleteIcon);
    ok &= Save(folder, "Link_Sm", 16, 16, DrawLinkIcon);
    ok &= Save(folder, "Unlink_Sm", 16, 16, DrawUnlinkIcon);
    ok &= Save(folder, "Alert_Sm", 16, 16, DrawAlertIcon);
    ok &= Save(folder, "Info_Sm", 16, 16, DrawInfoIcon);
    ok &= Save(folder, "PoweredByXMP_72x33", 72, 33, DrawPoweredByLarge);
    ok &= Save(folder, "PoweredByXMP_105x15", 105, 15, DrawPoweredBySmall);
    return ok ? 0 : 1;
}

#include <kivui/drawbot/Drawbot.h>

#include <kivui/drawbot/SupplierInterface.h>

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPen>

namespace kivui::drawbot {

namespace {

QRectF ToQt(kivcore::RectF const &r)
{
    return QRectF(r.x, r.y, r.width, r.height);
}

} // namespace

struct Drawbot::Private {
    SupplierInterface const &supplier;
    QPainter *painter = nullptr;

    QColor Resolve(QColor const &color) const { return color.isValid() ? color : painter->pen().color(); }
};

Drawbot::Drawbot(SupplierInterface const &supplier) : d(std::make_unique<Private>(Private{supplier, nullptr})) {}

Drawbot::Drawbot(SupplierInterface const &supplier, QPainter &painter)
    : d(std::make_unique<Private>(Private{supplier, &painter}))
{
}

Drawbot::~Drawbot() = default;

SupplierInterface const &Drawbot::GetSupplier() const
{
    return d->supplier;
}

QPainter *Drawbot::GetPainter() const
{
    return d->painter;
}

bool Drawbot::IsDrawing() const
{
    return d->painter != nullptr;
}

kivcore::PointF Drawbot::MeasureText(std::u16string_view text, float fontSize, std::string_view style) const
{
    return d->supplier.MeasureText(text, fontSize, style);
}

void Drawbot::DrawText(std::u16string_view text, kivcore::RectF const &rect, int alignment, float fontSize,
                       std::string_view style, QColor const &color)
{
    if (!d->painter || text.empty() || rect.IsEmpty()) return;
    QPainter &p = *d->painter;
    QFont const font = d->supplier.GetFont(fontSize, style);
    QString s = QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    QFontMetricsF const metrics(font);
    if (metrics.horizontalAdvance(s) > rect.width) s = metrics.elidedText(s, Qt::ElideRight, rect.width);
    Qt::Alignment h = Qt::AlignLeft;
    if (alignment == kAlignCenter)
        h = Qt::AlignHCenter;
    else if (alignment == kAlignRight)
        h = Qt::AlignRight;
    p.save();
    p.setFont(font);
    p.setPen(d->Resolve(color));
    p.drawText(ToQt(rect), static_cast<int>(h | Qt::AlignVCenter | Qt::TextSingleLine), s);
    p.restore();
}

void Drawbot::FillRect(kivcore::RectF const &rect, QColor const &color)
{
    if (!d->painter) return;
    d->painter->fillRect(ToQt(rect), d->Resolve(color));
}

void Drawbot::StrokeRect(kivcore::RectF const &rect, QColor const &color, float lineWidth)
{
    if (!d->painter) return;
    QPainter &p = *d->painter;
    p.save();
    p.setPen(QPen(d->Resolve(color), lineWidth));
    p.setBrush(Qt::NoBrush);
    // Inset by half the pen so the stroke stays inside the rectangle.
    float const h = lineWidth / 2.0f;
    p.drawRect(QRectF(rect.x + h, rect.y + h, rect.width - lineWidth, rect.height - lineWidth));
    p.restore();
}

void Drawbot::DrawLine(kivcore::PointF const &from, kivcore::PointF const &to, QColor const &color, float lineWidth)
{
    if (!d->painter) return;
    QPainter &p = *d->painter;
    p.save();
    p.setPen(QPen(d->Resolve(color), lineWidth));
    p.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
    p.restore();
}

void Drawbot::DrawImage(QImage const &image, kivcore::RectF const &rect, float opacity)
{
    if (!d->painter || image.isNull() || rect.IsEmpty()) return;
    QPainter &p = *d->painter;
    p.save();
    p.setOpacity(opacity);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(ToQt(rect), image);
    p.restore();
}

void Drawbot::Save()
{
    if (d->painter) d->painter->save();
}

void Drawbot::Restore()
{
    if (d->painter) d->painter->restore();
}

void Drawbot::ClipRect(kivcore::RectF const &rect)
{
    if (d->painter) d->painter->setClipRect(ToQt(rect), Qt::IntersectClip);
}

} // namespace kivui::drawbot

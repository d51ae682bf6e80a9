#include "skins/SkinStyle_p.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

namespace kivui::skins::detail {

SkinStyle::SkinStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void SkinStyle::drawPrimitive(PrimitiveElement inElement, QStyleOption const *inOption, QPainter *inPainter,
                              QWidget const *inWidget) const
{
    QProxyStyle::drawPrimitive(inElement, inOption, inPainter, inWidget);
    if (inElement != PE_IndicatorCheckBox || !inOption || !inPainter) return;
    QPalette const &palette = inOption->palette;
    if (palette.window().color().lightness() >= 128) return; // Fusion's outline shows on light windows
    // Halfway between the field and its text: clear on the field, quieter
    // than the check mark.
    QColor const field = palette.base().color();
    QColor const text = palette.text().color();
    QColor const outline((field.red() + text.red()) / 2, (field.green() + text.green()) / 2,
                         (field.blue() + text.blue()) / 2);
    inPainter->save();
    inPainter->setRenderHint(QPainter::Antialiasing, true);
    inPainter->setBrush(Qt::NoBrush);
    inPainter->setPen(QPen(outline, 1));
    inPainter->drawRoundedRect(QRectF(inOption->rect).adjusted(0.5, 0.5, -0.5, -0.5), 1, 1);
    inPainter->restore();
}

} // namespace kivui::skins::detail

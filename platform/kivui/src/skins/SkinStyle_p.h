#pragma once
// Internal to kivui: the widget style under both looks.

#include <QProxyStyle>

namespace kivui::skins::detail {

// Fusion, with check boxes that stay visible on a dark window: Fusion draws
// their outline a shade darker than the window, which on the dark look is
// darker than the field it frames.
class SkinStyle : public QProxyStyle {
public:
    SkinStyle();

    void drawPrimitive(PrimitiveElement inElement, QStyleOption const *inOption, QPainter *inPainter,
                       QWidget const *inWidget = nullptr) const override;
};

} // namespace kivui::skins::detail

#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/Geometry.h>

#include <QColor>

#include <memory>
#include <string>
#include <string_view>

class QImage;
class QPainter;

namespace kivui::drawbot {

class SupplierInterface;

// Drawing context handed to UI_Node::UI_Draw. It wraps a QPainter while a
// widget paints, or only the supplier when a caller merely measures (then the
// drawing operations do nothing). Colours left invalid take the painter's
// current pen, i.e. the widget's text colour of the look in use.
class KIVUI_EXPORT Drawbot {
public:
    enum Alignment : int { kAlignLeft = 0, kAlignCenter = 1, kAlignRight = 2 };

    explicit Drawbot(SupplierInterface const &supplier);
    Drawbot(SupplierInterface const &supplier, QPainter &painter);
    ~Drawbot();

    Drawbot(Drawbot const &) = delete;
    Drawbot &operator=(Drawbot const &) = delete;

    SupplierInterface const &GetSupplier() const;
    // Null when measuring only.
    QPainter *GetPainter() const;
    bool IsDrawing() const;

    kivcore::PointF MeasureText(std::u16string_view text, float fontSize = 0.0f, std::string_view style = {}) const;

    // Draws one line of text inside `rect`, vertically centred and aligned
    // horizontally by `alignment`; text wider than the rectangle is elided.
    void DrawText(std::u16string_view text, kivcore::RectF const &rect, int alignment = kAlignLeft,
                  float fontSize = 0.0f, std::string_view style = {}, QColor const &color = QColor());
    void FillRect(kivcore::RectF const &rect, QColor const &color);
    void StrokeRect(kivcore::RectF const &rect, QColor const &color = QColor(), float lineWidth = 1.0f);
    void DrawLine(kivcore::PointF const &from, kivcore::PointF const &to, QColor const &color = QColor(),
                  float lineWidth = 1.0f);
    // Scales the image into `rect`; a null image draws nothing.
    void DrawImage(QImage const &image, kivcore::RectF const &rect, float opacity = 1.0f);

    // Saves and restores the painter state (clip, pen, transform).
    void Save();
    void Restore();
    void ClipRect(kivcore::RectF const &rect);

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui::drawbot

#include <kivui/UI_StaticText.h>

#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/SupplierInterface.h>

#include <QFontMetricsF>
#include <QLabel>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace kivui {

namespace {

// A label that can end a text too long for it with an ellipsis.
class StaticTextLabel : public QLabel {
public:
    bool mElided = false;

protected:
    void paintEvent(QPaintEvent *inEvent) override
    {
        QRect const area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
        if (!mElided || wordWrap() || textFormat() != Qt::PlainText ||
            textInteractionFlags() != Qt::NoTextInteraction ||
            fontMetrics().horizontalAdvance(text()) <= area.width()) {
            QLabel::paintEvent(inEvent);
            return;
        }
        QPainter painter(this);
        drawFrame(&painter);
        style()->drawItemText(&painter, area, QStyle::visualAlignment(layoutDirection(), alignment()), palette(),
                              isEnabled(), fontMetrics().elidedText(text(), Qt::ElideRight, area.width()),
                              foregroundRole());
    }
};

} // namespace

struct UI_StaticText::Private {
    StaticTextLabel *label = nullptr;
    int mode = kTextModePlain;
    int alignment = kAlignLeft;
    float fontSize = 0.0f;
    std::string fontStyle;
};

UI_StaticText::UI_StaticText() : UI_StaticText(std::u16string()) {}

UI_StaticText::UI_StaticText(std::u16string const &inText)
    : UI_ControlView(new StaticTextLabel), d(std::make_unique<Private>())
{
    d->label = static_cast<StaticTextLabel *>(UI_GetWidget());
    d->label->setProperty("kivuiClass", QStringLiteral("UI_StaticText"));
    d->label->setTextFormat(Qt::PlainText);
    d->label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    SetText(inText);
    SetTextMode(kTextModePlain);
    kivcore::PointF const size = GetPreferredSize(nullptr);
    UI_SetLocalRectF(kivcore::RectF{0, 0, size.x, size.y});
}

UI_StaticText::~UI_StaticText() = default;

QLabel *UI_StaticText::GetLabel() const
{
    return d->label;
}

void UI_StaticText::SetText(std::u16string const &inText)
{
    d->label->setText(QString::fromStdU16String(inText));
}

std::u16string UI_StaticText::GetText() const
{
    return d->label->text().toStdU16String();
}

void UI_StaticText::SetTextMode(int inMode)
{
    d->mode = inMode;
    bool const selectable = inMode == kTextModeSelectable;
    d->label->setTextInteractionFlags(selectable ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard
                                                 : Qt::NoTextInteraction);
    d->label->setCursor(selectable ? Qt::IBeamCursor : Qt::ArrowCursor);
    // Style sheets colour addresses like links through this property.
    d->label->setProperty("kivuiTextMode", inMode);
    d->label->setForegroundRole(selectable ? QPalette::Link : QPalette::WindowText);
}

int UI_StaticText::GetTextMode() const
{
    return d->mode;
}

void UI_StaticText::SetAlignment(int inAlignment)
{
    d->alignment = inAlignment;
    Qt::Alignment h = Qt::AlignLeft;
    if (inAlignment == kAlignCenter)
        h = Qt::AlignHCenter;
    else if (inAlignment == kAlignRight)
        h = Qt::AlignRight;
    d->label->setAlignment(h | Qt::AlignVCenter);
}

int UI_StaticText::GetAlignment() const
{
    return d->alignment;
}

void UI_StaticText::SetFontSize(float inSize)
{
    d->fontSize = inSize;
    ApplyFont();
}

float UI_StaticText::GetFontSize() const
{
    return d->fontSize;
}

void UI_StaticText::SetFontStyle(std::string const &inStyle)
{
    d->fontStyle = inStyle;
    ApplyFont();
}

std::string const &UI_StaticText::GetFontStyle() const
{
    return d->fontStyle;
}

void UI_StaticText::SetWordWrap(bool inWrap)
{
    d->label->setWordWrap(inWrap);
}

void UI_StaticText::SetElided(bool inElided)
{
    d->label->mElided = inElided;
    d->label->update();
}

void UI_StaticText::UI_NodeChanged()
{
    UI_ControlView::UI_NodeChanged();
    ApplyFont();
}

void UI_StaticText::ApplyFont()
{
    if (drawbot::SupplierInterface const *supplier = UI_GetDrawSupplier()) {
        d->label->setFont(supplier->GetFont(d->fontSize, d->fontStyle));
        return;
    }
    // Without a supplier, follow the application font (the look's font).
    QFont font = QFont();
    if (d->fontSize > 0.0f) font.setPixelSize(std::max(1, int(std::lround(d->fontSize))));
    font.setBold(d->fontStyle.find("Bold") != std::string::npos);
    font.setItalic(d->fontStyle.find("Italic") != std::string::npos);
    d->label->setFont(font);
}

kivcore::PointF UI_StaticText::GetPreferredSize(drawbot::Drawbot const *inDrawbot) const
{
    std::u16string const text = GetText();
    kivcore::PointF size;
    if (inDrawbot) {
        size = inDrawbot->MeasureText(text, d->fontSize, d->fontStyle);
    } else {
        QFontMetricsF const fm(d->label->font());
        size = kivcore::PointF{float(std::ceil(fm.horizontalAdvance(d->label->text()))), float(std::ceil(fm.height()))};
    }
    // Room for the label's margin so that measured text is never clipped.
    int const margin = d->label->margin() * 2;
    return kivcore::PointF{size.x + float(margin), size.y + float(margin)};
}

} // namespace kivui

#include <kivui/UI_StarRating.h>

#include <kivui/drawbot/Drawbot.h>

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <cmath>

namespace kivui {

namespace {

constexpr float kGap = 2.0f;

QPainterPath StarPath(QRectF const &inCell)
{
    QPainterPath path;
    QPointF const c = inCell.center();
    double const outer = inCell.width() / 2.0;
    double const inner = outer * 0.42;
    for (int i = 0; i < 10; ++i) {
        double const r = (i % 2 == 0) ? outer : inner;
        double const a = -M_PI / 2.0 + i * M_PI / 5.0;
        QPointF const p(c.x() + r * std::cos(a), c.y() + r * std::sin(a));
        if (i == 0)
            path.moveTo(p);
        else
            path.lineTo(p);
    }
    path.closeSubpath();
    return path;
}

} // namespace

struct UI_StarRating::Private {
    double value = 0.0;
    float starSize = UI_StarRating::kDefaultStarSize;
};

UI_StarRating::UI_StarRating() : d(std::make_unique<Private>())
{
    QWidget *w = UI_GetWidget();
    w->setProperty("kivuiClass", QStringLiteral("UI_StarRating"));
    w->setFocusPolicy(Qt::StrongFocus);
    SetStarSize(kDefaultStarSize);
}

UI_StarRating::~UI_StarRating() = default;

void UI_StarRating::SetValue(double inValue)
{
    double const v = std::isnan(inValue) ? 0.0 : std::clamp(inValue, 0.0, double(kMaxStars));
    UI_ControlView::SetValueUnknown(false);
    if (v == d->value) return;
    d->value = v;
    UI_Invalidate();
}

double UI_StarRating::GetValue() const
{
    return d->value;
}

void UI_StarRating::SetStarSize(float inSize)
{
    d->starSize = std::max(4.0f, inSize);
    kivcore::RectF r = UI_GetLocalRectF(true);
    kivcore::PointF const size = GetPreferredSize(nullptr);
    r.width = size.x;
    r.height = size.y;
    UI_SetLocalRectF(r);
    UI_Invalidate();
}

float UI_StarRating::GetStarSize() const
{
    return d->starSize;
}

kivcore::PointF UI_StarRating::GetPreferredSize(drawbot::Drawbot const *) const
{
    return kivcore::PointF{kMaxStars * d->starSize + (kMaxStars + 1) * kGap, std::max(19.0f, d->starSize + 2 * kGap)};
}

int UI_StarRating::RatingAt(float inX) const
{
    if (inX < kGap) return 0;
    int const star = int((inX - kGap) / (d->starSize + kGap)) + 1;
    return std::clamp(star, 0, kMaxStars);
}

void UI_StarRating::UI_Draw(drawbot::Drawbot &drawbot)
{
    QPainter *painter = drawbot.GetPainter();
    if (!painter) return;
    painter->setRenderHint(QPainter::Antialiasing);
    QPalette const palette = UI_GetWidget()->palette();
    QColor const lit = palette.color(IsDisabled() ? QPalette::Disabled : QPalette::Active, QPalette::WindowText);
    QColor const dim = palette.color(QPalette::Mid);
    float const height = UI_GetLocalRectF(false).height;
    float const top = std::floor((height - d->starSize) / 2.0f);
    for (int i = 0; i < kMaxStars; ++i) {
        QRectF const cell(kGap + i * (d->starSize + kGap), top, d->starSize, d->starSize);
        QPainterPath const star = StarPath(cell);
        if (IsValueKnown() && i < std::lround(d->value)) {
            painter->fillPath(star, lit);
        } else {
            // Unlit stars as a dot, as rating controls customarily show them;
            // an unknown rating outlines every star.
            if (IsValueUnknown()) {
                painter->setPen(QPen(dim, 1.0));
                painter->drawPath(star);
            } else {
                painter->setPen(Qt::NoPen);
                painter->setBrush(dim);
                painter->drawEllipse(cell.center(), 1.5, 1.5);
            }
        }
    }
    if (UI_HasFocus()) {
        painter->setPen(QPen(palette.color(QPalette::Highlight), 1.0));
        painter->setBrush(Qt::NoBrush);
        kivcore::RectF const r = UI_GetLocalRectF(false);
        painter->drawRect(QRectF(0.5, 0.5, r.width - 1.0, r.height - 1.0));
    }
}

bool UI_StarRating::UI_DoKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event)
{
    if (focusNode != this || !event.keyDown || IsDisabled()) return false;
    double const current = IsValueKnown() ? d->value : 0.0;
    switch (event.code) {
    case KeyboardCode::kCharacter:
        if (event.character >= u'0' && event.character <= u'5' && event.modifiers.IsEmpty()) {
            UserSet(double(event.character - u'0'));
            return true;
        }
        return false;
    case KeyboardCode::kLeftArrow:
    case KeyboardCode::kDownArrow:
        UserSet(current - 1.0);
        return true;
    case KeyboardCode::kRightArrow:
    case KeyboardCode::kUpArrow:
        UserSet(current + 1.0);
        return true;
    default:
        return false;
    }
}

bool UI_StarRating::UI_DoMouseEvent(MouseEvent const &event)
{
    if (IsDisabled() || event.button != 1) return false;
    if (event.type == MouseEvent::kDown) {
        UI_SetFocus();
        int rating = RatingAt(event.local.x);
        // Clicking the single lit star takes it away again.
        if (rating == 1 && IsValueKnown() && d->value == 1.0) rating = 0;
        UserSet(rating);
        return true;
    }
    if (event.type == MouseEvent::kMove) {
        int const rating = RatingAt(event.local.x);
        if (rating != 0 || event.local.x < 0.0f) UserSet(std::max(0, rating));
        return true;
    }
    return event.type == MouseEvent::kUp;
}

void UI_StarRating::UserSet(double inValue)
{
    double const v = std::clamp(inValue, 0.0, double(kMaxStars));
    if (v == d->value && IsValueKnown()) return;
    d->value = v;
    UI_ControlView::SetValueUnknown(false);
    UI_Invalidate();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
    NotifyChanged();
}

} // namespace kivui

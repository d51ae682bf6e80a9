#include <kivui/UI_HotTextNumber.h>

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

#include <cmath>
#include <limits>

namespace kivui {

namespace {
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool SameNumber(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || a == b;
}
} // namespace

// The line edit of a hot-text number: drags change the number while the
// field is not being typed in.
class HotTextLineEdit : public QLineEdit {
public:
    explicit HotTextLineEdit(UI_HotTextNumber *inOwner) : mOwner(inOwner) {}

protected:
    void mousePressEvent(QMouseEvent *inEvent) override
    {
        if (hasFocus() || inEvent->button() != Qt::LeftButton) return QLineEdit::mousePressEvent(inEvent);
        mPressed = true;
        mDragging = false;
        mPressX = inEvent->position().x();
        mStartValue = mOwner->GetValue();
        inEvent->accept();
    }
    void mouseMoveEvent(QMouseEvent *inEvent) override
    {
        if (!mPressed) return QLineEdit::mouseMoveEvent(inEvent);
        double const dx = inEvent->position().x() - mPressX;
        if (!mDragging && std::abs(dx) < 3.0) return;
        if (!mDragging) {
            mDragging = true;
            setCursor(Qt::SizeHorCursor);
            mOwner->NotifyInteractively(UI_InteractiveControlChangedMessage::kBeginEditing);
        }
        double const start = std::isnan(mStartValue) ? mOwner->Clamp(0.0) : mStartValue;
        double const steps = std::trunc(dx / UI_HotTextNumber::kPixelsPerStep);
        mOwner->DragTo(start + steps * mOwner->GetIncrement());
    }
    void mouseReleaseEvent(QMouseEvent *inEvent) override
    {
        if (!mPressed) return QLineEdit::mouseReleaseEvent(inEvent);
        mPressed = false;
        if (mDragging) {
            mDragging = false;
            unsetCursor();
            mOwner->EndDrag(!SameNumber(mStartValue, mOwner->GetValue()));
            return;
        }
        // A click without a drag starts typing.
        setFocus(Qt::MouseFocusReason);
        selectAll();
    }
    void focusInEvent(QFocusEvent *inEvent) override
    {
        QLineEdit::focusInEvent(inEvent);
        mOwner->BeginEditing();
    }
    void focusOutEvent(QFocusEvent *inEvent) override
    {
        QLineEdit::focusOutEvent(inEvent);
        if (inEvent->reason() != Qt::PopupFocusReason && inEvent->reason() != Qt::ActiveWindowFocusReason)
            mOwner->CommitTyping();
    }
    void keyPressEvent(QKeyEvent *inEvent) override
    {
        switch (inEvent->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            mOwner->CommitTyping();
            selectAll();
            return;
        case Qt::Key_Up:
            mOwner->Step(1);
            return;
        case Qt::Key_Down:
            mOwner->Step(-1);
            return;
        default:
            QLineEdit::keyPressEvent(inEvent);
        }
    }

private:
    UI_HotTextNumber *mOwner;
    bool mPressed = false;
    bool mDragging = false;
    double mPressX = 0.0;
    double mStartValue = 0.0;
};

struct UI_HotTextNumber::Private {
    QLineEdit *edit = nullptr;
    double value = 0.0;
    int places = 0;
    double increment = 1.0;
    std::optional<double> min;
    std::optional<double> max;
    bool allowEmpty = false;
    std::uint32_t editFlags = 0;
    std::u16string unknownText;
    bool editing = false;
    double valueAtBegin = 0.0;
};

UI_HotTextNumber::UI_HotTextNumber()
    : UI_InteractiveControlView(new HotTextLineEdit(this)), d(std::make_unique<Private>())
{
    d->edit = static_cast<QLineEdit *>(UI_GetWidget());
    d->edit->setProperty("kivuiClass", QStringLiteral("UI_HotTextNumber"));
    d->edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    d->edit->setCursor(Qt::SizeHorCursor);
    // A press must not focus the field: pressing starts a drag, and only a
    // click without one starts typing.
    d->edit->setFocusPolicy(Qt::TabFocus);
    ShowValue();
    // Typing after a commit (focus kept) starts the next edit.
    QObject::connect(d->edit, &QLineEdit::textEdited, d->edit, [this] { BeginEditing(); });
    int const height = std::max(20, d->edit->sizeHint().height());
    UI_SetLocalRectF(kivcore::RectF{0, 0, 60, float(height)});
}

UI_HotTextNumber::~UI_HotTextNumber() = default;

QLineEdit *UI_HotTextNumber::GetLineEdit() const
{
    return d->edit;
}

void UI_HotTextNumber::SetValue(double inValue)
{
    if (std::isnan(inValue) && !d->allowEmpty) return;
    d->value = std::isnan(inValue) ? inValue : Clamp(inValue);
    UI_ControlView::SetValueUnknown(false);
    ShowValue();
}

double UI_HotTextNumber::GetValue() const
{
    return IsValueUnknown() ? kNaN : d->value;
}

void UI_HotTextNumber::SetDecimalPlaces(int inPlaces)
{
    d->places = std::clamp(inPlaces, 0, 10);
    ShowValue();
}

int UI_HotTextNumber::GetDecimalPlaces() const
{
    return d->places;
}
void UI_HotTextNumber::SetIncrement(double inIncrement)
{
    d->increment = inIncrement;
}
double UI_HotTextNumber::GetIncrement() const
{
    return d->increment;
}

void UI_HotTextNumber::SetMinMax(std::optional<double> inMin, std::optional<double> inMax)
{
    d->min = inMin;
    d->max = inMax;
    if (!std::isnan(d->value)) d->value = Clamp(d->value);
    ShowValue();
}

std::optional<double> UI_HotTextNumber::GetMin() const
{
    return d->min;
}
std::optional<double> UI_HotTextNumber::GetMax() const
{
    return d->max;
}
void UI_HotTextNumber::SetAllowEmpty(bool inAllow)
{
    d->allowEmpty = inAllow;
}
bool UI_HotTextNumber::GetAllowEmpty() const
{
    return d->allowEmpty;
}
void UI_HotTextNumber::SetEditTextFlags(std::uint32_t inFlags)
{
    d->editFlags = inFlags;
}
std::uint32_t UI_HotTextNumber::GetEditTextFlags() const
{
    return d->editFlags;
}

void UI_HotTextNumber::SetUnknownStateText(std::u16string const &inText)
{
    d->unknownText = inText;
    d->edit->setPlaceholderText(QString::fromStdU16String(inText));
}

std::u16string const &UI_HotTextNumber::GetUnknownStateText() const
{
    return d->unknownText;
}

void UI_HotTextNumber::SetValueUnknown(bool inUnknown)
{
    UI_ControlView::SetValueUnknown(inUnknown);
    ShowValue();
}

std::u16string UI_HotTextNumber::FormatValue(double inValue) const
{
    if (std::isnan(inValue)) return {};
    return QString::number(inValue, 'f', d->places).toStdU16String();
}

double UI_HotTextNumber::Clamp(double inValue) const
{
    double const scale = std::pow(10.0, d->places);
    double v = std::round(inValue * scale) / scale;
    if (d->min && v < *d->min) v = *d->min;
    if (d->max && v > *d->max) v = *d->max;
    return v;
}

void UI_HotTextNumber::ShowValue()
{
    QString const text = IsValueUnknown() ? QString() : QString::fromStdU16String(FormatValue(d->value));
    if (d->edit->text() != text) d->edit->setText(text);
}

void UI_HotTextNumber::UpdateEnabledState()
{
    UI_ControlView::UpdateEnabledState();
    d->edit->setProperty("kivuiDisabled", IsDisabled());
}

void UI_HotTextNumber::BeginEditing()
{
    if (d->editing || IsDisabled()) return;
    d->editing = true;
    d->valueAtBegin = GetValue();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kBeginEditing);
}

void UI_HotTextNumber::CommitTyping()
{
    if (!d->editing) return;
    d->editing = false;
    QString text = d->edit->text().trimmed();
    bool const wasUnknown = IsValueUnknown();
    if (text.isEmpty()) {
        if (d->allowEmpty && !wasUnknown) d->value = kNaN;
    } else {
        // Either decimal mark is accepted whatever the locale.
        text.replace(QLatin1Char(','), QLatin1Char('.'));
        bool ok = false;
        double const typed = text.toDouble(&ok);
        if (ok && std::isfinite(typed)) {
            d->value = Clamp(typed);
            UI_ControlView::SetValueUnknown(false);
        }
    }
    ShowValue();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kEndEditing);
    if (!SameNumber(d->valueAtBegin, GetValue())) NotifyChanged();
}

void UI_HotTextNumber::Step(int inSteps)
{
    if (IsDisabled()) return;
    double base = GetValue();
    // Typed but uncommitted text counts as the starting point.
    bool ok = false;
    double const typed = d->edit->text().trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (ok) base = typed;
    if (std::isnan(base)) base = 0.0;
    d->value = Clamp(base + inSteps * d->increment);
    UI_ControlView::SetValueUnknown(false);
    ShowValue();
    d->edit->selectAll();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
}

void UI_HotTextNumber::DragTo(double inValue)
{
    double const v = Clamp(inValue);
    if (SameNumber(v, GetValue())) return;
    d->value = v;
    UI_ControlView::SetValueUnknown(false);
    ShowValue();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
}

void UI_HotTextNumber::EndDrag(bool inChanged)
{
    NotifyInteractively(UI_InteractiveControlChangedMessage::kEndEditing);
    if (inChanged) NotifyChanged();
}

} // namespace kivui

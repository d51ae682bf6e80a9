#include <kivui/UI_Checkbox.h>

#include <QApplication>
#include <QCheckBox>
#include <QStyle>

namespace kivui {

namespace {

// The user only toggles between checked and unchecked; mixed is the
// program's to set.
class CheckBoxWidget : public QCheckBox {
protected:
    void nextCheckState() override { setCheckState(checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked); }
};

} // namespace

struct UI_Checkbox::Private {
    QCheckBox *box = nullptr;
    bool setting = false;
};

UI_Checkbox::UI_Checkbox() : UI_Checkbox(std::u16string()) {}

UI_Checkbox::UI_Checkbox(std::u16string const &inText)
    : UI_InteractiveControlView(new CheckBoxWidget), d(std::make_unique<Private>())
{
    d->box = static_cast<QCheckBox *>(UI_GetWidget());
    d->box->setProperty("kivuiClass", QStringLiteral("UI_Checkbox"));
    d->box->setTristate(true);
    SetText(inText);
    // clicked, not stateChanged: only the user's toggles are reported.
    QObject::connect(d->box, &QCheckBox::clicked, d->box, [this] {
        if (!d->setting) UserToggled();
    });
    QSize const hint = d->box->sizeHint();
    UI_SetLocalRectF(kivcore::RectF{0, 0, float(hint.width()), float(std::max(hint.height(), 19))});
}

UI_Checkbox::~UI_Checkbox() = default;

QCheckBox *UI_Checkbox::GetCheckBox() const
{
    return d->box;
}

UI_Checkbox::CheckboxValue UI_Checkbox::GetValue() const
{
    switch (d->box->checkState()) {
    case Qt::Checked:
        return kChecked;
    case Qt::PartiallyChecked:
        return kMixed;
    default:
        return kUnchecked;
    }
}

void UI_Checkbox::SetValue(CheckboxValue inValue)
{
    d->setting = true;
    d->box->setCheckState(inValue == kChecked ? Qt::Checked : inValue == kMixed ? Qt::PartiallyChecked : Qt::Unchecked);
    d->setting = false;
    UI_ControlView::SetValueUnknown(inValue == kMixed);
}

bool UI_Checkbox::IsChecked() const
{
    return d->box->checkState() == Qt::Checked;
}

void UI_Checkbox::SetValueUnknown(bool inUnknown)
{
    if (inUnknown)
        SetValue(kMixed);
    else {
        UI_ControlView::SetValueUnknown(false);
        if (GetValue() == kMixed) SetValue(kUnchecked);
    }
}

void UI_Checkbox::SetText(std::u16string const &inText)
{
    d->box->setText(QString::fromStdU16String(inText));
}

std::u16string UI_Checkbox::GetText() const
{
    return d->box->text().toStdU16String();
}

float UI_Checkbox::DefaultCheckSize()
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance()))
        return float(QApplication::style()->pixelMetric(QStyle::PM_IndicatorWidth));
    return 13.0f;
}

void UI_Checkbox::UserToggled()
{
    if (IsDisabled()) return;
    UI_ControlView::SetValueUnknown(GetValue() == kMixed);
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
    NotifyChanged();
}

} // namespace kivui

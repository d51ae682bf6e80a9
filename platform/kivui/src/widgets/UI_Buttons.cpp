#include <kivui/UI_Divider.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_TextButton.h>

#include <QButtonGroup>
#include <QFrame>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace kivui {

namespace {

void SizeToHint(UI_Node &inNode, QWidget const *inWidget)
{
    QSize const hint = inWidget->sizeHint();
    kivcore::RectF r = inNode.UI_GetLocalRectF(true);
    r.width = float(hint.width());
    r.height = float(std::max(hint.height(), 19));
    inNode.UI_SetLocalRectF(r);
}

} // namespace

// --- UI_PictureButton -------------------------------------------------------

UI_PictureButton::UI_PictureButton() : UI_ControlView(new QToolButton)
{
    mButton = static_cast<QToolButton *>(UI_GetWidget());
    mButton->setProperty("kivuiClass", QStringLiteral("UI_PictureButton"));
    mButton->setAutoRaise(true);
    mButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
    QObject::connect(mButton, &QToolButton::clicked, mButton, [this] {
        ShowImage();
        NotifyChanged();
    });
    UI_SetLocalRectF(kivcore::RectF{0, 0, 19, 19});
}

UI_PictureButton::~UI_PictureButton() = default;

QToolButton *UI_PictureButton::GetButton() const
{
    return mButton;
}

void UI_PictureButton::SetImages(QIcon const &inOff, QIcon const &inOn)
{
    mOff = inOff;
    mOn = inOn;
    ShowImage();
}

void UI_PictureButton::SetToggles(bool inToggles)
{
    mButton->setCheckable(inToggles);
}
bool UI_PictureButton::GetToggles() const
{
    return mButton->isCheckable();
}

void UI_PictureButton::SetOn(bool inOn)
{
    if (!mButton->isCheckable()) mButton->setCheckable(true);
    mButton->setChecked(inOn);
    ShowImage();
}

bool UI_PictureButton::IsOn() const
{
    return mButton->isChecked();
}

void UI_PictureButton::ShowImage()
{
    mButton->setIcon(IsOn() && !mOn.isNull() ? mOn : mOff);
    mButton->setProperty("kivuiOn", IsOn());
}

// --- UI_RadioGroup ----------------------------------------------------------

UI_RadioGroup::UI_RadioGroup()
{
    QWidget *w = UI_GetWidget();
    w->setProperty("kivuiClass", QStringLiteral("UI_RadioGroup"));
    mGroup = new QButtonGroup(w);
    mGroup->setExclusive(true);
    mLayout = new QVBoxLayout(w);
    mLayout->setContentsMargins(0, 0, 0, 0);
    mLayout->setSpacing(2);
    QObject::connect(mGroup, &QButtonGroup::idClicked, w, [this](int) { NotifyChanged(); });
}

UI_RadioGroup::~UI_RadioGroup() = default;

int UI_RadioGroup::AddButton(std::u16string const &inText, std::u16string const &inToolTip)
{
    auto *button = new QRadioButton(QString::fromStdU16String(inText), UI_GetWidget());
    button->setToolTip(QString::fromStdU16String(inToolTip));
    int const index = CountButtons();
    mGroup->addButton(button, index);
    mLayout->addWidget(button);
    // A child made after its parent was shown stays hidden, and the layout
    // would ignore it.
    button->show();
    FitToButtons();
    return index;
}

int UI_RadioGroup::CountButtons() const
{
    return int(mGroup->buttons().size());
}

void UI_RadioGroup::SetValue(int inIndex)
{
    if (QAbstractButton *button = mGroup->button(inIndex)) {
        button->setChecked(true);
        return;
    }
    // An exclusive group refuses to uncheck its last button.
    mGroup->setExclusive(false);
    for (QAbstractButton *b : mGroup->buttons())
        b->setChecked(false);
    mGroup->setExclusive(true);
}

int UI_RadioGroup::GetValue() const
{
    return mGroup->checkedId();
}

QRadioButton *UI_RadioGroup::GetButton(int inIndex) const
{
    return qobject_cast<QRadioButton *>(mGroup->button(inIndex));
}

void UI_RadioGroup::FitToButtons()
{
    QSize const hint = mLayout->sizeHint();
    kivcore::RectF r = UI_GetLocalRectF(true);
    r.width = std::max(r.width, float(hint.width()));
    r.height = float(hint.height());
    UI_SetLocalRectF(r);
}

// --- UI_TextButton ----------------------------------------------------------

UI_TextButton::UI_TextButton() : UI_TextButton(std::u16string()) {}

UI_TextButton::UI_TextButton(std::u16string const &inText) : UI_ControlView(new QPushButton)
{
    QPushButton *button = GetButton();
    button->setProperty("kivuiClass", QStringLiteral("UI_TextButton"));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, button, [this] { NotifyChanged(); });
    SetText(inText);
}

UI_TextButton::~UI_TextButton() = default;

QPushButton *UI_TextButton::GetButton() const
{
    return static_cast<QPushButton *>(UI_GetWidget());
}

void UI_TextButton::SetText(std::u16string const &inText)
{
    GetButton()->setText(QString::fromStdU16String(inText));
    SizeToHint(*this, GetButton());
}

std::u16string UI_TextButton::GetText() const
{
    return GetButton()->text().toStdU16String();
}

void UI_TextButton::SetDefault(bool inDefault)
{
    GetButton()->setDefault(inDefault);
}

// --- UI_Divider -------------------------------------------------------------

UI_Divider::UI_Divider(bool inVertical) : UI_SubView(new QFrame), mVertical(inVertical)
{
    auto *frame = static_cast<QFrame *>(UI_GetWidget());
    frame->setProperty("kivuiClass", QStringLiteral("UI_Divider"));
    frame->setFrameShape(inVertical ? QFrame::VLine : QFrame::HLine);
    frame->setFrameShadow(QFrame::Sunken);
    UI_SetLocalRectF(inVertical ? kivcore::RectF{0, 0, 2, 19} : kivcore::RectF{0, 0, 19, 2});
}

UI_Divider::~UI_Divider() = default;

bool UI_Divider::IsVertical() const
{
    return mVertical;
}

} // namespace kivui

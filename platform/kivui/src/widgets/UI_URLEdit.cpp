#include <kivui/UI_URLEdit.h>

#include <kivcore/FileUtils.h>
#include <kivcore/Localizer.h>

#include <QLineEdit>
#include <QStyle>
#include <QToolButton>
#include <QWidget>

namespace kivui {

namespace {

UI_URLEdit::Opener &CurrentOpener()
{
    static UI_URLEdit::Opener opener;
    return opener;
}

constexpr int kButtonWidth = 22;
constexpr int kSpacing = 2;

} // namespace

UI_URLEdit::UI_URLEdit() : UI_TextEdit(EditorKind::kSingleLine, new QWidget)
{
    QWidget *frame = UI_GetWidget();
    frame->setProperty("kivuiClass", QStringLiteral("UI_URLEdit"));
    mButton = new QToolButton(frame);
    mButton->setObjectName(QStringLiteral("kivuiOpenURLButton"));
    mButton->setIcon(frame->style()->standardIcon(QStyle::SP_ArrowRight));
    mButton->setToolTip(QString::fromStdU16String(
        kivcore::config::Localizer::Localize("$$$/kivui/UI_URLEdit/Open=Open in the default application")));
    mButton->setAutoRaise(true);
    mButton->setFocusPolicy(Qt::NoFocus);
    QObject::connect(mButton, &QToolButton::clicked, mButton, [this] { OpenURL(); });
    QObject::connect(GetLineEdit(), &QLineEdit::textChanged, mButton, [this] { UpdateButton(); });
    UpdateButton();
    kivcore::PointF const size = GetPreferredSize(nullptr);
    UI_SetLocalRectF(kivcore::RectF{0, 0, size.x + kButtonWidth + kSpacing, size.y});
    PlaceParts();
}

UI_URLEdit::~UI_URLEdit() = default;

QToolButton *UI_URLEdit::GetOpenButton() const
{
    return mButton;
}

void UI_URLEdit::SetOpener(Opener inOpener)
{
    CurrentOpener() = std::move(inOpener);
}

bool UI_URLEdit::OpenURL()
{
    std::u16string const url = GetValue();
    if (url.empty()) return false;
    if (CurrentOpener()) return CurrentOpener()(url);
    return kivcore::utility::OpenFileInDefaultApplication(url);
}

void UI_URLEdit::UI_SizeChanged(kivcore::PointF const &oldSize)
{
    UI_TextEdit::UI_SizeChanged(oldSize);
    PlaceParts();
}

void UI_URLEdit::PlaceParts()
{
    QWidget const *frame = UI_GetWidget();
    if (!frame || !mButton) return;
    int const w = frame->width();
    int const h = frame->height();
    GetLineEdit()->setGeometry(0, 0, std::max(0, w - kButtonWidth - kSpacing), h);
    mButton->setGeometry(std::max(0, w - kButtonWidth), 0, kButtonWidth, h);
}

void UI_URLEdit::UpdateButton()
{
    mButton->setEnabled(!GetLineEdit()->text().isEmpty());
}

} // namespace kivui

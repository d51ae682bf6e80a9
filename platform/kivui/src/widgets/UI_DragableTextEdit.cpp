#include <kivui/UI_DragableTextEdit.h>

#include <kivui/UI_NodeManager.h>

#include <QCursor>
#include <QFontMetricsF>
#include <QPlainTextEdit>
#include <QWidget>

#include <cmath>

namespace kivui {

// Follows the pointer while the user drags the bottom edge.
class DragableTextEditCapture : public InputCapture {
public:
    DragableTextEditCapture(UI_DragableTextEdit *inEdit, float inStartHeight, float inStartY)
        : mEdit(inEdit), mStartHeight(inStartHeight), mStartY(inStartY)
    {
    }
    void OnMouseMove(MouseEvent const &inEvent) override
    {
        mEdit->DragToHeight(mStartHeight + (inEvent.global.y - mStartY));
    }
    void OnMouseUp(MouseEvent const &inEvent) override
    {
        OnMouseMove(inEvent);
        mEdit->DragEnded();
    }

private:
    kivcore::utility::IntrusivePtr<UI_DragableTextEdit> mEdit;
    float mStartHeight;
    float mStartY;
};

UI_DragableTextEdit::UI_DragableTextEdit() : UI_TextEdit(EditorKind::kMultiLine, new QWidget)
{
    UI_GetWidget()->setProperty("kivuiClass", QStringLiteral("UI_DragableTextEdit"));
    UI_GetWidget()->setMouseTracking(true);
    SetLineCount(mLines);
}

UI_DragableTextEdit::~UI_DragableTextEdit() = default;

float UI_DragableTextEdit::HeightForLines(int inLines) const
{
    QPlainTextEdit const *edit = GetPlainTextEdit();
    QFontMetricsF const fm(edit->font());
    double const margins = 2.0 * edit->frameWidth() + 2.0 * edit->document()->documentMargin();
    return float(std::ceil(fm.lineSpacing() * std::max(1, inLines) + margins)) + kGripHeight;
}

void UI_DragableTextEdit::SetLineCount(int inLines)
{
    mLines = std::max(1, inLines);
    kivcore::RectF r = UI_GetLocalRectF(true);
    r.height = HeightForLines(mLines);
    if (r.width <= 0.0f) r.width = GetPreferredSize(nullptr).x;
    UI_SetLocalRectF(r);
    PlaceEditor();
}

int UI_DragableTextEdit::GetLineCount() const
{
    return mLines;
}

void UI_DragableTextEdit::SetSizeChangedFxn(std::shared_ptr<std::function<void()>> inFxn)
{
    mSizeChangedFxn = std::move(inFxn);
}

void UI_DragableTextEdit::UI_SizeChanged(kivcore::PointF const &oldSize)
{
    UI_TextEdit::UI_SizeChanged(oldSize);
    PlaceEditor();
}

void UI_DragableTextEdit::PlaceEditor()
{
    QWidget const *frame = UI_GetWidget();
    QPlainTextEdit *edit = GetPlainTextEdit();
    if (!frame || !edit || edit == frame) return;
    edit->setGeometry(0, 0, frame->width(), std::max(0, frame->height() - int(kGripHeight)));
}

bool UI_DragableTextEdit::UI_DoMouseEvent(MouseEvent const &event)
{
    if (event.type != MouseEvent::kDown || event.button != 1 || IsDisabled()) return false;
    float const height = UI_GetLocalRectF(false).height;
    if (event.local.y < height - kGripHeight) return false;
    UI_NodeManager::Get().BeginInputCapture(
        kivcore::utility::MakeIntrusive<DragableTextEditCapture>(this, height, event.global.y), this);
    return true;
}

bool UI_DragableTextEdit::UI_DoCursor(kivcore::PointF const &localPoint)
{
    if (localPoint.y < UI_GetLocalRectF(false).height - kGripHeight) return false;
    UI_NodeManager::Get().SetCursor(QCursor(Qt::SizeVerCursor));
    return true;
}

void UI_DragableTextEdit::DragToHeight(float inHeight)
{
    QFontMetricsF const fm(GetPlainTextEdit()->font());
    float const perLine = float(fm.lineSpacing());
    float const base = HeightForLines(1) - perLine;
    int const lines = std::max(1, int(std::lround((inHeight - base) / perLine)));
    if (lines == mLines) return;
    SetLineCount(lines);
    if (mSizeChangedFxn && *mSizeChangedFxn) (*mSizeChangedFxn)();
}

void UI_DragableTextEdit::DragEnded() {}

} // namespace kivui

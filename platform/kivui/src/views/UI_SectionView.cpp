#include <kivui/UI_SectionView.h>

#include <kivui/drawbot/Drawbot.h>

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace kivui {

using kivcore::PointF;
using kivcore::RectF;

namespace {

constexpr float kDisclosureSize = 9.0f;
constexpr float kHeaderPadding = 4.0f;

} // namespace

struct UI_SectionView::Private {
    kivcore::utility::IntrusivePtr<UI_SubView> content;
    std::u16string headerText;
    OpenedChangedFxn openedChanged;
    float headerHeight = kDefaultHeaderHeight;
    bool opened = true;
};

UI_SectionView::UI_SectionView() : d(std::make_unique<Private>())
{
    d->content = kivcore::utility::IntrusivePtr<UI_SubView>(new UI_SubView);
    d->content->UI_SetNodeID("SectionViewContent");
    ChildPushBack(d->content);
    if (QWidget *w = UI_GetWidget()) w->setFocusPolicy(Qt::TabFocus);
    LayoutContent();
}

UI_SectionView::~UI_SectionView() = default;

kivcore::utility::IntrusivePtr<UI_SubView> UI_SectionView::GetContentView() const
{
    return d->content;
}

PointF UI_SectionView::FrameSizeForContentSize(PointF const &inContentSize) const
{
    float const content = d->opened ? std::max(0.0f, inContentSize.y) : 0.0f;
    return PointF{inContentSize.x, d->headerHeight + content};
}

void UI_SectionView::SetOpened(bool inOpened)
{
    if (inOpened == d->opened) return;
    DoSetOpened(inOpened);
}

bool UI_SectionView::IsOpened() const
{
    return d->opened;
}

void UI_SectionView::DoSetOpened(bool inOpened)
{
    d->opened = inOpened;
    d->content->UI_Show(inOpened);
    LayoutContent();
    UI_Invalidate();
    if (d->openedChanged) d->openedChanged(*this, inOpened);
}

void UI_SectionView::SetHeaderText(std::u16string inText)
{
    d->headerText = std::move(inText);
    UI_Invalidate();
}

std::u16string const &UI_SectionView::GetHeaderText() const
{
    return d->headerText;
}

void UI_SectionView::SetHeaderHeight(float inHeight)
{
    d->headerHeight = std::max(0.0f, inHeight);
    LayoutContent();
    UI_Invalidate();
}

float UI_SectionView::GetHeaderHeight() const
{
    return d->headerHeight;
}

RectF UI_SectionView::GetHeaderRect() const
{
    RectF const bounds = UI_GetLocalRectF(false);
    return RectF{0.0f, 0.0f, bounds.width, std::min(bounds.height, d->headerHeight)};
}

RectF UI_SectionView::GetDisclosureRect() const
{
    float const size = std::min(kDisclosureSize, d->headerHeight);
    RectF rect{kHeaderPadding, 0.0f, size, size};
    AlignDisclosureButtonRect(rect);
    return rect;
}

void UI_SectionView::AlignDisclosureButtonRect(RectF &ioRect) const
{
    ioRect.y = std::floor((d->headerHeight - ioRect.height) * 0.5f);
}

void UI_SectionView::SetOpenedChangedFxn(OpenedChangedFxn inFxn)
{
    d->openedChanged = std::move(inFxn);
}

void UI_SectionView::LayoutContent()
{
    RectF const bounds = UI_GetLocalRectF(false);
    RectF const content{0.0f, d->headerHeight, bounds.width, std::max(0.0f, bounds.height - d->headerHeight)};
    if (!(d->content->UI_GetLocalRectF(true) == content)) d->content->UI_SetLocalRectF(content);
}

void UI_SectionView::UI_SizeChanged(PointF const &oldSize)
{
    UI_SubView::UI_SizeChanged(oldSize);
    LayoutContent();
}

void UI_SectionView::UI_Draw(drawbot::Drawbot &drawbot)
{
    RectF const header = GetHeaderRect();
    if (header.IsEmpty()) return;
    QWidget const *widget = UI_GetWidget();
    QPalette const palette = widget ? widget->palette() : QPalette();
    drawbot.FillRect(header, palette.color(QPalette::Button));
    drawbot.DrawLine(PointF{header.x, header.Bottom() - 0.5f}, PointF{header.Right(), header.Bottom() - 0.5f},
                     palette.color(QPalette::Mid));

    RectF const tri = GetDisclosureRect();
    if (QPainter *painter = drawbot.GetPainter()) {
        QPainterPath path;
        if (d->opened) { // pointing down
            path.moveTo(tri.x, tri.y + tri.height * 0.25);
            path.lineTo(tri.Right(), tri.y + tri.height * 0.25);
            path.lineTo(tri.x + tri.width * 0.5, tri.y + tri.height * 0.85);
        } else { // pointing right
            path.moveTo(tri.x + tri.width * 0.25, tri.y);
            path.lineTo(tri.x + tri.width * 0.85, tri.y + tri.height * 0.5);
            path.lineTo(tri.x + tri.width * 0.25, tri.Bottom());
        }
        path.closeSubpath();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->fillPath(path, palette.color(QPalette::ButtonText));
        painter->restore();
    }
    float const textLeft = tri.Right() + kHeaderPadding;
    drawbot.DrawText(d->headerText, RectF{textLeft, header.y,
                                          std::max(0.0f, header.Right() - textLeft - kHeaderPadding), header.height});
}

bool UI_SectionView::UI_DoMouseEvent(MouseEvent const &event)
{
    if (event.type != MouseEvent::kDown || event.button != 1 || !event.onSelf) return false;
    if (!GetHeaderRect().Contains(event.local)) return false;
    SetOpened(!d->opened);
    return true;
}

bool UI_SectionView::UI_DoKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event)
{
    if (focusNode != this || !event.keyDown) return false;
    if (event.CompareShortcut(KeyboardCode::kSpace) || event.CompareShortcut(KeyboardCode::kReturn)) {
        SetOpened(!d->opened);
        return true;
    }
    if (event.CompareShortcut(KeyboardCode::kLeftArrow)) {
        SetOpened(false);
        return true;
    }
    if (event.CompareShortcut(KeyboardCode::kRightArrow)) {
        SetOpened(true);
        return true;
    }
    return false;
}

} // namespace kivui

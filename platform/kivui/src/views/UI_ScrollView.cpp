#include <kivui/UI_ScrollView.h>

#include <kivui/UI_ScrollBar.h>

#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace kivui {

using kivcore::PointF;
using kivcore::RectF;

// Tells its node when the viewport changed size: the scroll area resizes the
// viewport only after the node saw its own resize, and showing or hiding a
// scroll bar changes the viewport alone.
class ScrollViewArea final : public QScrollArea {
public:
    void SetOwner(UI_ScrollView *inOwner) { mOwner = inOwner; }

protected:
    bool viewportEvent(QEvent *inEvent) override
    {
        bool const result = QScrollArea::viewportEvent(inEvent);
        if (inEvent->type() == QEvent::Resize && mOwner) mOwner->FollowViewportWidth(true);
        return result;
    }

private:
    UI_ScrollView *mOwner = nullptr;
};

struct UI_ScrollView::Private {
    ScrollViewArea *area = nullptr;
    kivcore::utility::IntrusivePtr<UI_SubView> content;
    RectF contentRect;
    bool followsWidth = true;
};

UI_ScrollView::UI_ScrollView() : UI_SubView(new ScrollViewArea), d(std::make_unique<Private>())
{
    d->area = static_cast<ScrollViewArea *>(UI_GetWidget());
    d->area->setFrameShape(QFrame::NoFrame);
    d->area->setWidgetResizable(false);
    d->area->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    d->content = kivcore::utility::IntrusivePtr<UI_SubView>(new UI_SubView);
    d->content->UI_SetNodeID("ScrollViewContent");
    ChildPushBack(d->content);
    d->area->setWidget(d->content->UI_GetWidget());
    d->area->widget()->setAutoFillBackground(false);
    d->area->SetOwner(this);
}

UI_ScrollView::~UI_ScrollView()
{
    d->area->SetOwner(nullptr);
    // The node owns the content widget, not the scroll area.
    if (QWidget *content = d->area->takeWidget()) content->setParent(d->area);
}

kivcore::utility::IntrusivePtr<UI_SubView> UI_ScrollView::GetContentView() const
{
    return d->content;
}

void UI_ScrollView::SetContentRect(RectF const &inRect)
{
    d->contentRect = inRect;
    Update();
}

RectF UI_ScrollView::GetContentRect() const
{
    return d->contentRect;
}

void UI_ScrollView::Update()
{
    // The scroll area owns the content's position; only the size is ours.
    RectF const current = d->content->UI_GetLocalRectF(true);
    RectF const wanted{current.x, current.y, std::max(0.0f, d->contentRect.width),
                       std::max(0.0f, d->contentRect.height)};
    if (!(wanted == current)) d->content->UI_SetLocalRectF(wanted);
    d->area->widget()->updateGeometry();
}

void UI_ScrollView::FollowViewportWidth(bool inViewportResized)
{
    if (!d->followsWidth) return;
    float width = static_cast<float>(d->area->viewport()->width());
    if (!inViewportResized) {
        // Qt resizes the viewport later (or, while hidden, only when shown):
        // work its width out from the frame and the scroll bar it will need.
        RectF const frame = UI_GetLocalRectF(false);
        float const border = 2.0f * static_cast<float>(d->area->frameWidth());
        Qt::ScrollBarPolicy const policy = d->area->verticalScrollBarPolicy();
        bool const bar = policy == Qt::ScrollBarAlwaysOn ||
                         (policy == Qt::ScrollBarAsNeeded && d->contentRect.height > frame.height - border);
        width = std::max(0.0f, frame.width - border - (bar ? UI_ScrollBar::GetDefaultSize() : 0.0f));
    }
    if (width == d->contentRect.width) return;
    d->contentRect.width = width;
    Update();
}

void UI_ScrollView::UI_SizeChanged(PointF const &oldSize)
{
    UI_SubView::UI_SizeChanged(oldSize);
    FollowViewportWidth(false);
}

RectF UI_ScrollView::GetVisibleContentRect() const
{
    QWidget const *viewport = d->area->viewport();
    PointF const pos = GetScrollPosition();
    return RectF{pos.x, pos.y, float(viewport->width()), float(viewport->height())};
}

PointF UI_ScrollView::GetScrollPosition() const
{
    return PointF{float(d->area->horizontalScrollBar()->value()), float(d->area->verticalScrollBar()->value())};
}

void UI_ScrollView::SetScrollPosition(PointF const &inPosition)
{
    d->area->horizontalScrollBar()->setValue(static_cast<int>(std::lround(inPosition.x)));
    d->area->verticalScrollBar()->setValue(static_cast<int>(std::lround(inPosition.y)));
}

void UI_ScrollView::ScrollIntoView(RectF const &inRect, bool inMinimal)
{
    RectF const rect = inRect.Normalized();
    RectF const visible = GetVisibleContentRect();
    auto axis = [inMinimal](float start, float size, float viewStart, float viewSize) {
        if (!inMinimal) return start;
        if (start < viewStart) return start;
        if (start + size > viewStart + viewSize) return std::min(start, start + size - viewSize);
        return viewStart;
    };
    SetScrollPosition(PointF{axis(rect.x, rect.width, visible.x, visible.width),
                             axis(rect.y, rect.height, visible.y, visible.height)});
}

void UI_ScrollView::SetContentFollowsWidth(bool inFollows)
{
    d->followsWidth = inFollows;
    FollowViewportWidth(false);
}

bool UI_ScrollView::GetContentFollowsWidth() const
{
    return d->followsWidth;
}

} // namespace kivui

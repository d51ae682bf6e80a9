#pragma once

#include <kivui/UI_SubView.h>

#include <memory>

namespace kivui {

// A view that scrolls one content view (over QScrollArea). Children go into
// GetContentView(); the content rectangle says how large the scrolled area is.
// Unless told otherwise the content view takes the viewport's width whenever
// the scroll view is resized, so that a layout that reads the content width
// fills the visible width; SetContentRect can make it wider or narrower.
class KIVUI_EXPORT UI_ScrollView : public UI_SubView {
public:
    UI_ScrollView();

    kivcore::utility::IntrusivePtr<UI_SubView> GetContentView() const;

    // The scrolled area, in content coordinates (normally origin 0,0). The
    // content view gets its size; the scroll position is kept where possible.
    void SetContentRect(kivcore::RectF const &inRect);
    kivcore::RectF GetContentRect() const;
    // Brings the scroll bars and the content view in line with the content
    // rectangle after it or the view's size changed.
    void Update();

    // Scrolls so that inRect (content coordinates) is visible. With
    // inMinimal the view moves as little as needed (an already visible rect
    // does not move it); otherwise the rect's top-left goes to the viewport's
    // top-left as far as the content allows.
    void ScrollIntoView(kivcore::RectF const &inRect, bool inMinimal);
    // Part of the content currently shown, in content coordinates.
    kivcore::RectF GetVisibleContentRect() const;
    void SetScrollPosition(kivcore::PointF const &inPosition);
    kivcore::PointF GetScrollPosition() const;

    void SetContentFollowsWidth(bool inFollows);
    bool GetContentFollowsWidth() const;

    void UI_SizeChanged(kivcore::PointF const &oldSize) override;

protected:
    ~UI_ScrollView() override;

private:
    friend class ScrollViewArea;
    void FollowViewportWidth(bool inViewportResized);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

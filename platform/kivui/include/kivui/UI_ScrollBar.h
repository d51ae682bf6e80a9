#pragma once

#include <kivui/UI_SubView.h>

class QScrollBar;

namespace kivui {

// A scroll bar over QScrollBar. Scroll views make their own; this node is
// for views that scroll something that is not a content view.
class KIVUI_EXPORT UI_ScrollBar : public UI_SubView {
public:
    explicit UI_ScrollBar(bool inVertical = true);

    // Thickness of a scroll bar in the current look (the width of a vertical
    // one), in UI units.
    static float GetDefaultSize();

    void SetRange(int inMinimum, int inMaximum);
    int GetMinimum() const;
    int GetMaximum() const;
    void SetValue(int inValue);
    int GetValue() const;
    void SetPageStep(int inStep);
    QScrollBar *GetScrollBar() const;

protected:
    ~UI_ScrollBar() override;
};

} // namespace kivui

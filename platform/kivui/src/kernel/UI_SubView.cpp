#include <kivui/UI_SubView.h>

namespace kivui {

UI_SubView::UI_SubView() = default;
UI_SubView::UI_SubView(QWidget *inWidget) : UI_Container(inWidget) {}
UI_SubView::~UI_SubView() = default;

void UI_SubView::UI_LayoutChildren()
{
    UI_Container::UI_LayoutChildren();
}

void UI_SubView::UI_SizeChanged(kivcore::PointF const &oldSize)
{
    UI_Container::UI_SizeChanged(oldSize);
}

} // namespace kivui

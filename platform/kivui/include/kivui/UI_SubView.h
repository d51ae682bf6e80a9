#pragma once

#include <kivui/UI_Container.h>

namespace kivui {

// A plain container view; most views derive from it.
class KIVUI_EXPORT UI_SubView : public UI_Container {
public:
    UI_SubView();

    void UI_LayoutChildren() override;
    void UI_SizeChanged(kivcore::PointF const &oldSize) override;

protected:
    explicit UI_SubView(QWidget *inWidget);
    ~UI_SubView() override;
};

} // namespace kivui

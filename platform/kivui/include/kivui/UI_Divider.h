#pragma once

#include <kivui/UI_SubView.h>

namespace kivui {

// A thin separating line, horizontal unless made vertical.
class KIVUI_EXPORT UI_Divider : public UI_SubView {
public:
    explicit UI_Divider(bool inVertical = false);
    bool IsVertical() const;

protected:
    ~UI_Divider() override;

private:
    bool mVertical;
};

} // namespace kivui

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/RefCounted.h>

#include <functional>
#include <memory>

namespace kivui {
class UI_SubView;
}

namespace kivmetadataui {

// A toolkit control bound to one metadata value. Held by shared pointer; the
// callable given at construction runs when the control goes away (the
// factory uses it to cut the binding), before the view is released.
class KIVMETADATAUI_EXPORT Control {
public:
    Control(kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &inView, std::function<void()> const &inOnDestroy);
    ~Control();
    Control(Control const &) = delete;
    Control &operator=(Control const &) = delete;

    kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &GetView() const;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

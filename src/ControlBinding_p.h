#pragma once
// Internal to kivmetadataui: the binding of one control that the built-in
// factory made to the value it shows. Not API.

#include "BindControl_p.h"

#include <kivcore/RefCounted.h>

#include <functional>
#include <memory>

namespace kivui {
class Message;
class UI_ControlView;
} // namespace kivui

namespace kivmetadataui {

class Control;
enum class ControlKind : std::uint8_t;

// Shows its value in the control at once and after each later change of the
// value's provider, and writes each user edit back. The property is looked up
// once, when the binding is made, not at each showing or writing.
class ControlBinding {
public:
    ControlBinding(ResolvedValue inValue, kivui::UI_ControlView *inControl, ControlKind inKind);

    // Binds `inControl` (of kind `inKind`) and shows the value. The binding
    // lasts as long as the control's change handler; the returned Control
    // cuts it when it goes. `inOnChanged` is called after each edit has been
    // written back.
    static std::shared_ptr<Control> Bind(kivcore::utility::IntrusivePtr<kivui::UI_ControlView> const &inControl,
                                         ControlKind inKind, ResolvedValue inValue,
                                         std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
                                         std::shared_ptr<std::function<void()>> const &inSizeHandler);

    // The live binding of a control made by the built-in factory, else null.
    static std::shared_ptr<ControlBinding> Of(kivui::UI_ControlView const *inControl);

    // Shows the value with the control's change reports muted: showing never
    // counts as an edit.
    void Show();
    // Shows another value in the same control from now on.
    void Show(ResolvedValue inValue);

private:
    // Writes a user edit back; false for the reports of the binding's own
    // showing and writing.
    bool Write();
    // A change of the provider, shown unless this binding made it or the
    // user is typing in the control.
    void OnProviderChanged();

    ResolvedValue mValue;
    kivui::UI_ControlView *mControl;
    ControlKind mKind;
    bool mShowing = false;
    bool mWriting = false;
};

} // namespace kivmetadataui

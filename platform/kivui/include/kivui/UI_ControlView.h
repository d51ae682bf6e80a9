#pragma once

#include <kivui/Message.h>
#include <kivui/UI_SubView.h>

#include <memory>
#include <string>
#include <vector>

namespace kivui {

// Base of the controls: value-unknown state, control-level disabling, tool
// tip, change listeners and a preferred size.
class KIVUI_EXPORT UI_ControlView : public UI_SubView {
public:
    bool IsValueUnknown() const;
    bool IsValueKnown() const { return !IsValueUnknown(); }
    // Unknown state: several differing values are shown as one.
    virtual void SetValueUnknown(bool inUnknown);

    // Disabled controls cannot be edited; independent of UI_SetEnabled.
    virtual void SetDisabled(bool inDisabled);
    bool IsDisabled() const;
    void SetEnabled(bool inEnabled) { SetDisabled(!inEnabled); }
    bool IsEnabled() const { return !IsDisabled(); }

    void SetToolTip(std::u16string const &inToolTip);
    std::u16string GetToolTip() const;

    void NotifyWhenChanged(MessageHandler inHandler);
    // The size the control would like, measured with inDrawbot when given.
    virtual kivcore::PointF GetPreferredSize(drawbot::Drawbot const *inDrawbot) const;

protected:
    UI_ControlView();
    explicit UI_ControlView(QWidget *inWidget);
    ~UI_ControlView() override;

    // Sends a UI_ControlChangedMessage to the NotifyWhenChanged listeners.
    void NotifyChanged();
    static void Broadcast(std::vector<MessageHandler> const &inHandlers, Message *inMessage);
    // Applies disabled/enabled to the widgets of the control.
    virtual void UpdateEnabledState();
    void UI_ApplyEnabled(bool inEnabled) override;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

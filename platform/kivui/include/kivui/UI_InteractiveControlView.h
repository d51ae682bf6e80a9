#pragma once

#include <kivui/UI_ControlView.h>

#include <memory>

namespace kivui {

// A control that reports the stages of interactive editing.
class KIVUI_EXPORT UI_InteractiveControlView : public UI_ControlView {
public:
    void NotifyWhenChangedInteractively(MessageHandler inHandler);

protected:
    UI_InteractiveControlView();
    explicit UI_InteractiveControlView(QWidget *inWidget);
    ~UI_InteractiveControlView() override;

    // Sends a UI_InteractiveControlChangedMessage with inChangeMessage (0
    // editing began, 1 changed, 2 editing ended).
    void NotifyInteractively(int inChangeMessage);

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

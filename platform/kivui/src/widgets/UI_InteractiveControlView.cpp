#include <kivui/UI_InteractiveControlView.h>

namespace kivui {

UI_InteractiveControlView::UI_InteractiveControlView() = default;
UI_InteractiveControlView::UI_InteractiveControlView(QWidget *inWidget) : UI_ControlView(inWidget) {}
UI_InteractiveControlView::~UI_InteractiveControlView() = default;

void UI_InteractiveControlView::NotifyWhenChangedInteractively(MessageHandler inHandler)
{
    if (inHandler) mInteractiveHandlers.push_back(std::move(inHandler));
}

void UI_InteractiveControlView::NotifyInteractively(int inChangeMessage)
{
    UI_InteractiveControlChangedMessage message(this, inChangeMessage);
    Broadcast(mInteractiveHandlers, &message);
}

} // namespace kivui

#include <kivui/UI_InteractiveControlView.h>

namespace kivui {

struct UI_InteractiveControlView::Private {
    std::vector<MessageHandler> interactiveHandlers;
};

UI_InteractiveControlView::UI_InteractiveControlView() : d(std::make_unique<Private>()) {}
UI_InteractiveControlView::UI_InteractiveControlView(QWidget *inWidget)
    : UI_ControlView(inWidget), d(std::make_unique<Private>())
{
}
UI_InteractiveControlView::~UI_InteractiveControlView() = default;

void UI_InteractiveControlView::NotifyWhenChangedInteractively(MessageHandler inHandler)
{
    if (inHandler) d->interactiveHandlers.push_back(std::move(inHandler));
}

void UI_InteractiveControlView::NotifyInteractively(int inChangeMessage)
{
    UI_InteractiveControlChangedMessage message(this, inChangeMessage);
    Broadcast(d->interactiveHandlers, &message);
}

} // namespace kivui

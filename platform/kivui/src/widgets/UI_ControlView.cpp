#include <kivui/UI_ControlView.h>

#include "kernel/NodeEventFilter_p.h"

#include <QWidget>

namespace kivui {

struct UI_ControlView::Private {
    bool unknown = false;
    bool disabled = false;
    std::vector<MessageHandler> changedHandlers;
};

UI_ControlView::UI_ControlView() : d(std::make_unique<Private>()) {}
UI_ControlView::UI_ControlView(QWidget *inWidget) : UI_SubView(inWidget), d(std::make_unique<Private>()) {}
UI_ControlView::~UI_ControlView() = default;

bool UI_ControlView::IsValueUnknown() const
{
    return d->unknown;
}

void UI_ControlView::SetValueUnknown(bool inUnknown)
{
    d->unknown = inUnknown;
}

void UI_ControlView::SetDisabled(bool inDisabled)
{
    d->disabled = inDisabled;
    UpdateEnabledState();
}

bool UI_ControlView::IsDisabled() const
{
    return d->disabled;
}

void UI_ControlView::SetToolTip(std::u16string const &inToolTip)
{
    if (QWidget *w = UI_GetWidget()) w->setToolTip(QString::fromStdU16String(inToolTip));
}

std::u16string UI_ControlView::GetToolTip() const
{
    QWidget const *w = UI_GetWidget();
    return w ? w->toolTip().toStdU16String() : std::u16string();
}

void UI_ControlView::NotifyWhenChanged(MessageHandler inHandler)
{
    if (inHandler) d->changedHandlers.push_back(std::move(inHandler));
}

kivcore::PointF UI_ControlView::GetPreferredSize(drawbot::Drawbot const *) const
{
    QWidget const *w = UI_GetWidget();
    if (!w) return {};
    QSize const s = w->sizeHint().expandedTo(w->minimumSizeHint());
    return kivcore::PointF{float(s.width()), float(s.height())};
}

void UI_ControlView::NotifyChanged()
{
    UI_ControlChangedMessage message(this);
    Broadcast(d->changedHandlers, &message);
}

void UI_ControlView::Broadcast(std::vector<MessageHandler> const &inHandlers, Message *inMessage)
{
    // A handler may add handlers or drop the control's last owner (a panel
    // rebuilding itself on a change): work on a copy, and keep the control
    // alive until the event loop so that the code that notified can finish.
    NodeKeepAlive keep(inMessage ? inMessage->GetSource() : nullptr);
    auto const handlers = inHandlers;
    for (auto const &h : handlers) {
        if (h && *h) (*h)(inMessage);
    }
}

void UI_ControlView::UpdateEnabledState()
{
    UI_ApplyEnabled(UI_IsEnabled());
}

void UI_ControlView::UI_ApplyEnabled(bool inEnabled)
{
    if (QWidget *w = UI_GetWidget()) w->setEnabled(inEnabled && !d->disabled);
}

} // namespace kivui

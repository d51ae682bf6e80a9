#pragma once

#include <kivui/kivui_export.h>

#include <functional>
#include <memory>

namespace kivui {

class UI_Node;

// Something a control reports to its listeners.
class KIVUI_EXPORT Message {
public:
    explicit Message(UI_Node *inSource) : mSource(inSource) {}
    virtual ~Message();
    UI_Node *GetSource() const { return mSource; }

private:
    UI_Node *mSource;
};

// A control's value changed (sent to NotifyWhenChanged listeners).
class KIVUI_EXPORT UI_ControlChangedMessage : public Message {
public:
    using Message::Message;
    ~UI_ControlChangedMessage() override;
};

// Interactive editing stages of a control.
class KIVUI_EXPORT UI_InteractiveControlChangedMessage : public Message {
public:
    enum { kBeginEditing = 0, kChanged = 1, kEndEditing = 2 };
    UI_InteractiveControlChangedMessage(UI_Node *inSource, int inChangeMessage)
        : Message(inSource), mChangeMessage(inChangeMessage)
    {
    }
    ~UI_InteractiveControlChangedMessage() override;
    int GetChangeMessage() const { return mChangeMessage; }

private:
    int mChangeMessage;
};

// Listeners are held by shared pointer; the control keeps its copy, so a
// caller disconnects by emptying the function in place (*handler = nullptr).
using MessageHandler = std::shared_ptr<std::function<void(Message *)>>;

} // namespace kivui

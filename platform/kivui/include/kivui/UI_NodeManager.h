#pragma once

#include <kivui/kivui_export.h>

#include <kivui/Events.h>

#include <kivcore/RefCounted.h>

#include <memory>

class QCursor;

namespace kivui {

class UI_Node;

// Receives every mouse move, wherever the pointer is, until the button that
// started the capture is released.
class KIVUI_EXPORT InputCapture : public kivcore::utility::RefCountedInterface {
public:
    // Coordinates in the events are global; local equals global.
    virtual void OnMouseMove(MouseEvent const &inEvent);
    // Called once; the capture ends right after.
    virtual void OnMouseUp(MouseEvent const &inEvent);

protected:
    InputCapture() = default;
    ~InputCapture() override;
};

// Process-wide state of the node layer: input capture and the cursor.
class KIVUI_EXPORT UI_NodeManager {
public:
    static UI_NodeManager &Get();

    void BeginInputCapture(kivcore::utility::IntrusivePtr<InputCapture> inCapture);
    void EndInputCapture();
    InputCapture *GetInputCapture() const;

    // Sets the cursor of the widget under the pointer; meant for UI_DoCursor.
    void SetCursor(QCursor const &inCursor);

    // Dispatch entry points used by the event filter; public so that tests
    // and synthetic input can drive nodes without Qt events.
    bool DispatchKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent);
    bool DispatchMouseEvent(UI_Node *inTarget, MouseEvent const &inEvent);

    UI_NodeManager(UI_NodeManager const &) = delete;
    UI_NodeManager &operator=(UI_NodeManager const &) = delete;

private:
    UI_NodeManager();
    ~UI_NodeManager();
    friend class NodeEventFilter;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

#pragma once

#include <kivui/kivui_export.h>

#include <kivui/Events.h>

#include <kivcore/RefCounted.h>

#include <memory>

class QCursor;

namespace kivui {

class UI_Node;

// Receives every mouse move, wherever the pointer is, until the button that
// started the capture is released. Event coordinates: `global` on the screen;
// `local` in the node whose mouse-down started the capture (the node given to
// BeginInputCapture, or else the node handling the press), global otherwise.
class KIVUI_EXPORT InputCapture : public kivcore::utility::RefCountedInterface {
public:
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

    void BeginInputCapture(kivcore::utility::IntrusivePtr<InputCapture> inCapture, UI_Node *inCoordinateNode = nullptr);
    void EndInputCapture();
    InputCapture *GetInputCapture() const;

    // Sets the cursor of the widget under the pointer; meant for UI_DoCursor.
    void SetCursor(QCursor const &inCursor);

    // Dispatch entry points used by the event filter; public so that tests
    // and synthetic input can drive nodes without Qt events. A key goes to
    // UI_DoPreKeyboardEvent from the top node down to the focus node, then to
    // UI_DoKeyboardEvent from the focus node up; the first true ends it.
    bool DispatchKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent);
    bool DispatchPreKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent);
    bool DispatchPostKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent);
    // Delivers a capture's event as the filter does (mouse up ends it).
    void DispatchCaptureEvent(MouseEvent const &inEvent);
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

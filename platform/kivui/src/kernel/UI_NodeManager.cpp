#include <kivui/UI_NodeManager.h>

#include "NodeEventFilter_p.h"

#include <kivui/UI_Container.h>
#include <kivui/UI_Node.h>

#include <QCursor>
#include <QPointer>
#include <QWidget>

#include <deque>
#include <vector>

namespace kivui {

InputCapture::~InputCapture() = default;
void InputCapture::OnMouseMove(MouseEvent const &) {}
void InputCapture::OnMouseUp(MouseEvent const &) {}

struct UI_NodeManager::Private {
    kivcore::utility::IntrusivePtr<InputCapture> capture;
    kivcore::utility::IntrusivePtr<UI_Node> captureNode;
    UI_Node *mouseNode = nullptr; // node handling the mouse event being dispatched
    QPointer<QWidget> cursorWidget;
    bool cursorSet = false;
};

UI_NodeManager::UI_NodeManager() : d(std::make_unique<Private>()) {}
UI_NodeManager::~UI_NodeManager() = default;

UI_NodeManager &UI_NodeManager::Get()
{
    // Never destroyed: nodes may outlive static destruction order.
    static UI_NodeManager *manager = new UI_NodeManager;
    return *manager;
}

void UI_NodeManager::BeginInputCapture(kivcore::utility::IntrusivePtr<InputCapture> inCapture,
                                       UI_Node *inCoordinateNode)
{
    d->capture = std::move(inCapture);
    d->captureNode = inCoordinateNode ? inCoordinateNode : d->mouseNode;
}

void UI_NodeManager::EndInputCapture()
{
    d->capture.reset();
    d->captureNode.reset();
}

void UI_NodeManager::DispatchCaptureEvent(MouseEvent const &inEvent)
{
    if (!d->capture) return;
    MouseEvent ev = inEvent;
    ev.onSelf = false;
    ev.local = ev.global;
    if (d->captureNode) {
        if (QWidget *w = d->captureNode->UI_GetWidget()) {
            // Widget and node coordinates differ only by the rounding of the origin.
            QPointF const p = w->mapFromGlobal(QPointF(ev.global.x, ev.global.y));
            ev.local = kivcore::PointF{float(p.x()), float(p.y())};
        }
    }
    kivcore::utility::IntrusivePtr<InputCapture> capture = d->capture;
    if (ev.type == MouseEvent::kUp) {
        EndInputCapture();
        capture->OnMouseUp(ev);
    } else {
        capture->OnMouseMove(ev);
    }
}

InputCapture *UI_NodeManager::GetInputCapture() const
{
    return d->capture.get();
}

void UI_NodeManager::SetCursor(QCursor const &inCursor)
{
    if (d->cursorWidget) {
        d->cursorWidget->setCursor(inCursor);
        d->cursorWidget->setProperty("kivuiNodeCursor", true);
        d->cursorSet = true;
    }
}

bool UI_NodeManager::DispatchKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent)
{
    return DispatchPreKeyboardEvent(inFocusNode, inEvent) || DispatchPostKeyboardEvent(inFocusNode, inEvent);
}

bool UI_NodeManager::DispatchPreKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent)
{
    std::vector<UI_Node *> chain;
    std::deque<NodeKeepAlive> keep;
    for (UI_Node *n = inFocusNode; n; n = n->UI_GetParent()) {
        chain.push_back(n);
        keep.emplace_back(n);
    }
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        if ((*it)->UI_DoPreKeyboardEvent(inFocusNode, inEvent)) return true;
    }
    return false;
}

bool UI_NodeManager::DispatchPostKeyboardEvent(UI_Node *inFocusNode, KeyboardEvent const &inEvent)
{
    std::vector<UI_Node *> chain;
    std::deque<NodeKeepAlive> keep;
    for (UI_Node *n = inFocusNode; n; n = n->UI_GetParent()) {
        chain.push_back(n);
        keep.emplace_back(n);
    }
    for (UI_Node *n : chain) {
        if (n->UI_DoKeyboardEvent(inFocusNode, inEvent)) return true;
    }
    return false;
}

bool UI_NodeManager::DispatchMouseEvent(UI_Node *inTarget, MouseEvent const &inEvent)
{
    if (!inTarget) return false;
    NodeKeepAlive keep(inTarget);
    UI_Node *const previous = d->mouseNode;
    d->mouseNode = inTarget;
    bool const handled = inTarget->UI_DoMouseEvent(inEvent);
    d->mouseNode = previous;
    return handled;
}

void NodeEventFilter::HandleCursor(QWidget *inWidget, UI_Node *inNode, QPointF inPos)
{
    auto &m = UI_NodeManager::Get();
    m.d->cursorWidget = inWidget;
    m.d->cursorSet = false;
    kivcore::PointF local{float(inPos.x()), float(inPos.y())};
    bool answered = false;
    for (UI_Node *n = inNode; n && !answered; n = n->UI_GetParent()) {
        NodeKeepAlive keep(n);
        answered = n->UI_DoCursor(local);
        kivcore::RectF const r = n->UI_GetLocalRectF(true);
        local = kivcore::PointF{local.x + r.x, local.y + r.y};
    }
    // Only a cursor that a node set is taken back; widgets keep their own.
    if (!answered && inWidget && inWidget->property("kivuiNodeCursor").toBool()) {
        inWidget->unsetCursor();
        inWidget->setProperty("kivuiNodeCursor", false);
    }
    m.d->cursorWidget = nullptr;
}

} // namespace kivui

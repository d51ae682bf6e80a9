#pragma once

#include <kivui/kivui_export.h>

#include <kivui/Events.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_Matrix.h>

#include <kivcore/Geometry.h>
#include <kivcore/RefCounted.h>

#include <memory>
#include <string>

class QWidget;

namespace kivui {

namespace drawbot {
class SupplierInterface;
class Drawbot;
} // namespace drawbot

class UI_Container;

// One element of the UI: owns exactly one QWidget and mirrors the widget
// tree with a tree of nodes. Geometry is kept here in float and pushed to the
// widget rounded; Qt events reach the node through the virtual UI_Do* hooks.
class KIVUI_EXPORT UI_Node : public kivcore::utility::RefCountedInterface {
public:
    // A node over a plain QWidget that paints through UI_Draw.
    UI_Node();
    UI_Node(UI_Node const &) = delete;
    UI_Node &operator=(UI_Node const &) = delete;

    QWidget *UI_GetWidget() const;
    // The node that owns inWidget, or null.
    static UI_Node *FromWidget(QWidget const *inWidget);
    // The node owning inWidget or its nearest ancestor widget that has one.
    static UI_Node *FromWidgetOrAncestor(QWidget const *inWidget);

    void UI_SetNodeID(std::string inID);
    std::string const &UI_GetNodeID() const;
    // Depth-first search of this node and its descendants.
    UI_Node *UI_FindNodeByID(std::string const &inID);

    UI_Container *UI_GetParent() const;
    int UI_CountChildren() const;
    UI_Node *UI_GetChild(int inIndex) const;
    UI_Node *UI_GetRoot();
    bool UI_IsAncestorOf(UI_Node const *inNode) const;

    // Origin in the parent's coordinates.
    void UI_SetLocalRectF(kivcore::RectF const &inRect);
    // withOrigin false: x = y = 0 and the size; true: with the origin.
    kivcore::RectF UI_GetLocalRectF(bool withOrigin) const;
    // A top-level window's rectangle on the screen (makes a parentless node
    // a window); for a node inside a window, its rectangle in screen terms.
    void UI_SetGlobalStructureRect(kivcore::RectF const &inRect);
    kivcore::RectF UI_GetGlobalStructureRect() const;
    // Translation from this node's coordinates to inParent's; inParent null
    // means the top of the tree. When inParent is not an ancestor the matrix
    // goes through the top of both trees (global coordinates).
    UI_Matrix UI_GetSelfToSpecificParentMatrix(UI_Node const *inParent) const;

    void UI_SetLayoutBinding(LayoutBinding inBinding);
    LayoutBinding UI_GetLayoutBinding() const;
    // When true a size change of this node re-lays its children by their
    // bindings; false suppresses that while a frame is being set.
    void UI_SetLayoutsChildren(bool inLayouts);
    bool UI_GetLayoutsChildren() const;

    // A new node counts as shown; its widget appears once the node is in a
    // shown widget tree. A node without a parent widget becomes a window of
    // its own only after UI_SetGlobalStructureRect placed it on the screen,
    // so that views made before they are attached never pop up.
    void UI_Show(bool inShow);
    bool UI_IsShown() const;
    void UI_SetEnabled(bool inEnabled);
    bool UI_IsEnabled() const;

    void UI_SetFocus();
    bool UI_HasFocus() const;
    // Schedules a repaint.
    void UI_Invalidate();

    void UI_SetDrawSupplier(drawbot::SupplierInterface *inSupplier);
    // The supplier of this node or its nearest ancestor; null when detached.
    drawbot::SupplierInterface *UI_GetDrawSupplier() const;

    // Keeps the node alive until control returns to the event loop; use it
    // instead of releasing the last reference inside one of the node's own
    // event handlers.
    void UI_DeferRelease();

    // Hooks. A size change calls UI_SizeChanged, whose default runs
    // UI_LayoutChildren when this node lays out its children; the default
    // UI_LayoutChildren moves and resizes the children by their bindings.
    // UI_NodeChanged runs on every node of a subtree that was attached,
    // detached or given another draw supplier.
    virtual void UI_LayoutChildren();
    virtual void UI_SizeChanged(kivcore::PointF const &oldSize);
    virtual void UI_NodeChanged();
    virtual void UI_Draw(drawbot::Drawbot &drawbot);
    // Key events go first to the focus node's ancestors from the top down
    // (pre), then from the focus node up; true stops the walk.
    virtual bool UI_DoKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event);
    virtual bool UI_DoPreKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event);
    virtual bool UI_DoMouseEvent(MouseEvent const &event);
    // True when the node set the cursor for localPoint itself.
    virtual bool UI_DoCursor(kivcore::PointF const &localPoint);

protected:
    // A node over inWidget (taken over; deleted with the node).
    explicit UI_Node(QWidget *inWidget);
    ~UI_Node() override;

    // Size delta of the size change being laid out (new minus old).
    kivcore::PointF UI_GetLayoutDelta() const;
    // Moves and resizes every child by its binding for the given delta.
    void UI_ApplyChildBindings(kivcore::PointF const &inDelta);
    // Called after the widget was moved or resized by Qt (user resize,
    // Qt layouts): takes the widget geometry into the float rectangle.
    void UI_SyncFromWidget();
    // Applies the node's enabled state to its widget; controls add their own
    // restrictions.
    virtual void UI_ApplyEnabled(bool inEnabled);

private:
    friend class UI_Container;
    friend class NodeEventFilter;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

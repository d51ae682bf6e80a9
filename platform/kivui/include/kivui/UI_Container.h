#pragma once

#include <kivui/UI_Node.h>

#include <vector>

namespace kivui {

// A node with children. The widget tree follows the node tree.
class KIVUI_EXPORT UI_Container : public UI_Node {
public:
    UI_Container();

    // Appends inChild, taking it from any former parent, and re-parents its
    // widget under this node's widget.
    void ChildPushBack(kivcore::utility::IntrusivePtr<UI_Node> inChild);
    void ChildInsert(int inIndex, kivcore::utility::IntrusivePtr<UI_Node> inChild);
    // Detaches inChild (its widget loses its parent); the node lives on while
    // someone holds it.
    void ChildRemove(UI_Node *inChild);
    // Detaches several children at once. A child nobody else holds is
    // released with its widget where it stands; the others are detached as
    // ChildRemove does. Taking a widget out of its window walks every widget
    // of the window, so a container dropping many children uses this.
    void ChildrenRemove(std::vector<UI_Node *> const &inChildren);
    // Detaches and releases every child.
    void DeleteChildren();
    int ChildIndex(UI_Node const *inChild) const;

protected:
    explicit UI_Container(QWidget *inWidget);
    ~UI_Container() override;
};

} // namespace kivui

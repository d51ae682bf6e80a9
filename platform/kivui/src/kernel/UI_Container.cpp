#include <kivui/UI_Container.h>

#include "NodeEventFilter_p.h"
#include "UI_Node_p.h"

#include <kivcore/Assert.h>

#include <algorithm>
#include <unordered_set>

namespace kivui {

UI_Container::UI_Container() = default;
UI_Container::UI_Container(QWidget *inWidget) : UI_Node(inWidget) {}
UI_Container::~UI_Container() = default;

void UI_Container::ChildPushBack(kivcore::utility::IntrusivePtr<UI_Node> inChild)
{
    ChildInsert(UI_CountChildren(), std::move(inChild));
}

void UI_Container::ChildInsert(int inIndex, kivcore::utility::IntrusivePtr<UI_Node> inChild)
{
    KIV_ASSERT("kivui/UI_Container", "kivui::UI_Container::ChildInsert", inChild);
    if (!inChild) return;
    KIV_ASSERT("kivui/UI_Container", "kivui::UI_Container::ChildInsert",
               inChild.get() != this && !inChild->UI_IsAncestorOf(this));
    if (inChild.get() == this || inChild->UI_IsAncestorOf(this)) return;
    if (UI_Container *former = inChild->UI_GetParent()) {
        if (former == this && ChildIndex(inChild.get()) < inIndex) --inIndex;
        former->ChildRemove(inChild.get());
    }
    inIndex = std::clamp(inIndex, 0, UI_CountChildren());
    d->children.insert(d->children.begin() + inIndex, inChild);
    inChild->d->parent = this;
    QWidget *childWidget = inChild->UI_GetWidget();
    if (childWidget && UI_GetWidget()) {
        childWidget->setParent(UI_GetWidget());
        inChild->d->pushing = true;
        childWidget->setGeometry(RoundedRect(inChild->d->rect));
        inChild->d->pushing = false;
        // Qt stacks later children above earlier ones; follow the node order.
        if (inIndex + 1 < UI_CountChildren()) {
            if (QWidget *above = UI_GetChild(inIndex + 1)->UI_GetWidget()) childWidget->stackUnder(above);
        }
        childWidget->setVisible(inChild->d->shown);
    }
    NotifySubtreeChanged(inChild.get());
}

void UI_Container::ChildRemove(UI_Node *inChild)
{
    auto it =
        std::find_if(d->children.begin(), d->children.end(), [inChild](auto const &c) { return c.get() == inChild; });
    if (it == d->children.end()) return;
    kivcore::utility::IntrusivePtr<UI_Node> keep = *it;
    d->children.erase(it);
    inChild->d->parent = nullptr;
    if (QWidget *w = inChild->UI_GetWidget()) {
        w->hide();
        w->setParent(nullptr);
    }
    NotifySubtreeChanged(inChild);
}

void UI_Container::ChildrenRemove(std::vector<UI_Node *> const &inChildren)
{
    std::unordered_set<UI_Node const *> const leaving(inChildren.begin(), inChildren.end());
    std::vector<kivcore::utility::IntrusivePtr<UI_Node>> removed;
    for (auto const &child : d->children)
        if (leaving.count(child.get())) removed.push_back(child);
    std::erase_if(d->children, [&leaving](auto const &child) { return leaving.count(child.get()) > 0; });
    for (auto const &child : removed) {
        child->d->parent = nullptr;
        if (child->RefCount() > 1) { // held elsewhere too: lives on without our widget
            if (QWidget *w = child->UI_GetWidget()) {
                w->hide();
                w->setParent(nullptr);
            }
            NotifySubtreeChanged(child.get());
        }
    }
    // Releasing `removed` destroys the others, widgets included.
}

void UI_Container::DeleteChildren()
{
    auto children = std::move(d->children);
    d->children.clear();
    for (auto &child : children)
        child->d->parent = nullptr;
    // Releasing here destroys every child nobody else holds, widgets included.
    for (auto &child : children) {
        if (child->RefCount() > 1) {
            if (QWidget *w = child->UI_GetWidget()) {
                w->hide();
                w->setParent(nullptr);
            }
            NotifySubtreeChanged(child.get());
        }
    }
}

int UI_Container::ChildIndex(UI_Node const *inChild) const
{
    for (int i = 0; i < UI_CountChildren(); ++i) {
        if (UI_GetChild(i) == inChild) return i;
    }
    return -1;
}

} // namespace kivui

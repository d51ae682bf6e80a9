#pragma once

// Not part of the kivui API.

#include <kivui/UI_Node.h>

#include <QPointer>
#include <QWidget>

#include <vector>

namespace kivui {

struct UI_Node::Private {
    QPointer<QWidget> widget;
    std::string id;
    UI_Container *parent = nullptr;
    std::vector<kivcore::utility::IntrusivePtr<UI_Node>> children;
    kivcore::RectF rect;
    kivcore::RectF globalRect;
    LayoutBinding binding{kBindTopLeft};
    bool layoutsChildren = true;
    bool shown = true;
    bool isWindow = false; // placed on the screen by UI_SetGlobalStructureRect
    bool enabled = true;
    bool pushing = false; // geometry being pushed to the widget
    drawbot::SupplierInterface *supplier = nullptr;
    kivcore::PointF layoutDelta;
};

// Rounds edges rather than sizes so that adjacent float rectangles stay
// adjacent on screen.
QRect RoundedRect(kivcore::RectF const &inRect);

// Runs UI_NodeChanged over a whole subtree.
void NotifySubtreeChanged(UI_Node *inNode);

} // namespace kivui

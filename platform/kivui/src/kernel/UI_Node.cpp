#include <kivui/UI_Node.h>

#include "NodeEventFilter_p.h"
#include "UI_Node_p.h"

#include <kivui/UI_Container.h>
#include <kivui/drawbot/Drawbot.h>

#include <QApplication>
#include <QLoggingCategory>
#include <QPainter>
#include <QTimer>

#include <cmath>
#include <unordered_map>

Q_LOGGING_CATEGORY(lcKivUiKernel, "kiv.ui.kernel", QtFatalMsg)

namespace kivui {

using kivcore::PointF;
using kivcore::RectF;

namespace {

std::unordered_map<QWidget const *, UI_Node *> &WidgetTable()
{
    static std::unordered_map<QWidget const *, UI_Node *> table;
    return table;
}

} // namespace

QRect RoundedRect(RectF const &inRect)
{
    int const left = static_cast<int>(std::lround(inRect.x));
    int const top = static_cast<int>(std::lround(inRect.y));
    int const right = static_cast<int>(std::lround(inRect.x + inRect.width));
    int const bottom = static_cast<int>(std::lround(inRect.y + inRect.height));
    return QRect(left, top, std::max(0, right - left), std::max(0, bottom - top));
}

void NotifySubtreeChanged(UI_Node *inNode)
{
    NodeKeepAlive keep(inNode);
    inNode->UI_NodeChanged();
    for (int i = 0; i < inNode->UI_CountChildren(); ++i)
        NotifySubtreeChanged(inNode->UI_GetChild(i));
}

UI_Node::UI_Node() : UI_Node(nullptr) {}

UI_Node::UI_Node(QWidget *inWidget) : d(std::make_unique<Private>())
{
    bool const adopted = inWidget != nullptr;
    if (!inWidget) inWidget = new NodeWidget(this);
    d->widget = inWidget;
    WidgetTable()[inWidget] = this;
    QObject::connect(inWidget, &QObject::destroyed, [inWidget] { WidgetTable().erase(inWidget); });
    NodeEventFilter::Get().Watch(inWidget);

    if (adopted && (inWidget->testAttribute(Qt::WA_Resized) || inWidget->testAttribute(Qt::WA_Moved))) {
        QRect const g = inWidget->geometry();
        d->rect = RectF{float(g.x()), float(g.y()), float(g.width()), float(g.height())};
    } else {
        d->pushing = true;
        inWidget->setGeometry(0, 0, 0, 0);
        d->pushing = false;
    }
}

UI_Node::~UI_Node()
{
    // Children first: their widgets live inside ours. A child that someone
    // still holds keeps its widget, taken out of ours.
    for (auto &child : d->children) {
        child->d->parent = nullptr;
        if (child->RefCount() > 1) {
            if (QWidget *w = child->UI_GetWidget()) {
                w->hide();
                w->setParent(nullptr);
            }
        }
    }
    d->children.clear();
    if (QWidget *w = d->widget.data()) {
        WidgetTable().erase(w);
        w->removeEventFilter(&NodeEventFilter::Get());
        delete w;
    }
}

QWidget *UI_Node::UI_GetWidget() const
{
    return d->widget.data();
}

UI_Node *UI_Node::FromWidget(QWidget const *inWidget)
{
    if (!inWidget) return nullptr;
    auto &table = WidgetTable();
    auto it = table.find(inWidget);
    return it == table.end() ? nullptr : it->second;
}

UI_Node *UI_Node::FromWidgetOrAncestor(QWidget const *inWidget)
{
    for (QWidget const *w = inWidget; w; w = w->parentWidget()) {
        if (UI_Node *node = FromWidget(w)) return node;
    }
    return nullptr;
}

void UI_Node::UI_SetNodeID(std::string inID)
{
    d->id = std::move(inID);
    if (d->widget) d->widget->setObjectName(QString::fromStdString(d->id));
}

std::string const &UI_Node::UI_GetNodeID() const
{
    return d->id;
}

UI_Node *UI_Node::UI_FindNodeByID(std::string const &inID)
{
    if (d->id == inID) return this;
    for (auto const &child : d->children) {
        if (UI_Node *found = child->UI_FindNodeByID(inID)) return found;
    }
    return nullptr;
}

UI_Container *UI_Node::UI_GetParent() const
{
    return d->parent;
}

int UI_Node::UI_CountChildren() const
{
    return static_cast<int>(d->children.size());
}

UI_Node *UI_Node::UI_GetChild(int inIndex) const
{
    if (inIndex < 0 || inIndex >= UI_CountChildren()) return nullptr;
    return d->children[static_cast<std::size_t>(inIndex)].get();
}

UI_Node *UI_Node::UI_GetRoot()
{
    UI_Node *node = this;
    while (UI_Node *parent = node->UI_GetParent())
        node = parent;
    return node;
}

bool UI_Node::UI_IsAncestorOf(UI_Node const *inNode) const
{
    for (UI_Node const *n = inNode ? inNode->UI_GetParent() : nullptr; n; n = n->UI_GetParent()) {
        if (n == this) return true;
    }
    return false;
}

void UI_Node::UI_SetLocalRectF(RectF const &inRect)
{
    RectF const old = d->rect;
    d->rect = inRect;
    if (QWidget *w = d->widget.data()) {
        QRect target = RoundedRect(inRect);
        if (w->isWindow()) target.moveTopLeft(w->geometry().topLeft());
        if (w->geometry() != target) {
            d->pushing = true;
            w->setGeometry(target);
            d->pushing = false;
        }
    }
    if (old.width != inRect.width || old.height != inRect.height) {
        NodeKeepAlive keep(this);
        d->layoutDelta = PointF{inRect.width - old.width, inRect.height - old.height};
        UI_SizeChanged(old.Size());
        d->layoutDelta = PointF{};
    }
}

RectF UI_Node::UI_GetLocalRectF(bool withOrigin) const
{
    if (withOrigin) return d->rect;
    return RectF{0.0f, 0.0f, d->rect.width, d->rect.height};
}

void UI_Node::UI_SetGlobalStructureRect(RectF const &inRect)
{
    d->globalRect = inRect;
    if (QWidget *w = d->widget.data(); w && w->isWindow() && !UI_GetParent()) {
        d->isWindow = true;
        d->pushing = true;
        w->setGeometry(RoundedRect(inRect));
        d->pushing = false;
        UI_SetLocalRectF(RectF{0.0f, 0.0f, inRect.width, inRect.height});
        return;
    }
    // A node inside a window: place it so that it lands on inRect.
    RectF local = inRect;
    if (UI_Node *parent = UI_GetParent()) {
        RectF const parentGlobal = parent->UI_GetGlobalStructureRect();
        local = inRect.Offset(-parentGlobal.x, -parentGlobal.y);
    }
    UI_SetLocalRectF(local);
}

RectF UI_Node::UI_GetGlobalStructureRect() const
{
    QWidget const *w = d->widget.data();
    if (!UI_GetParent()) {
        if (w && w->isWindow() && (w->isVisible() || w->testAttribute(Qt::WA_Moved))) {
            QPoint const pos = w->geometry().topLeft();
            return RectF{float(pos.x()), float(pos.y()), d->rect.width, d->rect.height};
        }
        return RectF{d->globalRect.x, d->globalRect.y, d->rect.width, d->rect.height};
    }
    UI_Matrix const m = UI_GetSelfToSpecificParentMatrix(nullptr);
    UI_Node const *root = this;
    while (root->UI_GetParent())
        root = root->UI_GetParent();
    RectF const rootGlobal = root->UI_GetGlobalStructureRect();
    return m.TransformRect(UI_GetLocalRectF(false)).Offset(rootGlobal.x, rootGlobal.y);
}

UI_Matrix UI_Node::UI_GetSelfToSpecificParentMatrix(UI_Node const *inParent) const
{
    UI_Matrix m;
    UI_Node const *node = this;
    while (node && node != inParent) {
        UI_Node const *parent = node->UI_GetParent();
        if (!parent) break; // the root's own origin is not part of its tree's coordinates
        m.dx += node->d->rect.x;
        m.dy += node->d->rect.y;
        node = parent;
    }
    if (!inParent || node == inParent) return m;
    // inParent is in another branch or tree: go through global coordinates.
    RectF const selfGlobal = UI_GetGlobalStructureRect();
    RectF const parentGlobal = inParent->UI_GetGlobalStructureRect();
    return UI_Matrix{selfGlobal.x - parentGlobal.x, selfGlobal.y - parentGlobal.y};
}

void UI_Node::UI_SetLayoutBinding(LayoutBinding inBinding)
{
    d->binding = inBinding;
}
LayoutBinding UI_Node::UI_GetLayoutBinding() const
{
    return d->binding;
}
void UI_Node::UI_SetLayoutsChildren(bool inLayouts)
{
    d->layoutsChildren = inLayouts;
}
bool UI_Node::UI_GetLayoutsChildren() const
{
    return d->layoutsChildren;
}

void UI_Node::UI_Show(bool inShow)
{
    d->shown = inShow;
    QWidget *w = d->widget.data();
    if (!w) return;
    // A node that is not part of a widget tree yet (a row made before it is
    // added) must not pop up as a window of its own; only a node placed on
    // the screen with UI_SetGlobalStructureRect is a window.
    if (!w->parentWidget() && !d->isWindow) return;
    w->setVisible(inShow);
}

bool UI_Node::UI_IsShown() const
{
    QWidget const *w = d->widget.data();
    if (w && d->isWindow && !w->parentWidget()) return d->shown && w->isVisible();
    return d->shown;
}

void UI_Node::UI_SetEnabled(bool inEnabled)
{
    d->enabled = inEnabled;
    UI_ApplyEnabled(inEnabled);
}

bool UI_Node::UI_IsEnabled() const
{
    return d->enabled;
}

void UI_Node::UI_ApplyEnabled(bool inEnabled)
{
    if (QWidget *w = d->widget.data()) w->setEnabled(inEnabled);
}

void UI_Node::UI_SetFocus()
{
    if (QWidget *w = d->widget.data()) w->setFocus(Qt::OtherFocusReason);
}

bool UI_Node::UI_HasFocus() const
{
    QWidget const *focus = QApplication::focusWidget();
    return focus && FromWidgetOrAncestor(focus) == this;
}

void UI_Node::UI_Invalidate()
{
    if (QWidget *w = d->widget.data()) w->update();
}

void UI_Node::UI_SetDrawSupplier(drawbot::SupplierInterface *inSupplier)
{
    if (d->supplier == inSupplier) return;
    d->supplier = inSupplier;
    NotifySubtreeChanged(this);
}

drawbot::SupplierInterface *UI_Node::UI_GetDrawSupplier() const
{
    for (UI_Node const *n = this; n; n = n->UI_GetParent()) {
        if (n->d->supplier) return n->d->supplier;
    }
    return nullptr;
}

void UI_Node::UI_DeferRelease()
{
    AddRef();
    QTimer::singleShot(0, qApp, [this] { Release(); });
}

void UI_Node::UI_LayoutChildren()
{
    UI_ApplyChildBindings(d->layoutDelta);
}

void UI_Node::UI_SizeChanged(PointF const &)
{
    if (d->layoutsChildren) UI_LayoutChildren();
}

void UI_Node::UI_NodeChanged() {}
void UI_Node::UI_Draw(drawbot::Drawbot &) {}
bool UI_Node::UI_DoKeyboardEvent(UI_Node *, KeyboardEvent const &)
{
    return false;
}
bool UI_Node::UI_DoPreKeyboardEvent(UI_Node *, KeyboardEvent const &)
{
    return false;
}
bool UI_Node::UI_DoMouseEvent(MouseEvent const &)
{
    return false;
}
bool UI_Node::UI_DoCursor(PointF const &)
{
    return false;
}

PointF UI_Node::UI_GetLayoutDelta() const
{
    return d->layoutDelta;
}

void UI_Node::UI_ApplyChildBindings(PointF const &inDelta)
{
    if (inDelta.x == 0.0f && inDelta.y == 0.0f) return;
    // A child's own layout may add or remove siblings; walk a snapshot.
    auto const children = d->children;
    for (auto const &child : children) {
        LayoutBinding const b = child->d->binding;
        RectF r = child->d->rect;
        if (b.Any(kBindMoveRight)) r.x += inDelta.x;
        if (b.Any(kBindMoveDown)) r.y += inDelta.y;
        if (b.Any(kBindWidth)) r.width += inDelta.x;
        if (b.Any(kBindHeight)) r.height += inDelta.y;
        if (!(r == child->d->rect)) child->UI_SetLocalRectF(r);
    }
}

void UI_Node::UI_SyncFromWidget()
{
    QWidget *w = d->widget.data();
    if (!w || d->pushing) return;
    QRect const g = w->geometry();
    RectF r = d->rect;
    if (w->isWindow()) {
        d->globalRect.x = float(g.x());
        d->globalRect.y = float(g.y());
        d->globalRect.width = float(g.width());
        d->globalRect.height = float(g.height());
    } else if (RoundedRect(r).topLeft() != g.topLeft()) {
        r.x = float(g.x());
        r.y = float(g.y());
    }
    if (RoundedRect(d->rect).size() != g.size()) {
        r.width = float(g.width());
        r.height = float(g.height());
    }
    if (r == d->rect) return;
    RectF const old = d->rect;
    d->rect = r;
    if (old.width != r.width || old.height != r.height) {
        NodeKeepAlive keep(this);
        d->layoutDelta = PointF{r.width - old.width, r.height - old.height};
        UI_SizeChanged(old.Size());
        d->layoutDelta = PointF{};
    }
}

// ---------------------------------------------------------------------------

NodeKeepAlive::NodeKeepAlive(UI_Node *inNode) : mNode(inNode && inNode->RefCount() > 0 ? inNode : nullptr)
{
    if (mNode) mNode->AddRef();
}

NodeKeepAlive::~NodeKeepAlive()
{
    if (!mNode) return;
    if (mNode->RefCount() == 1 && QCoreApplication::instance()) {
        // The dispatch outlived every other owner: let the event handler that
        // is running return before the node and its widget go.
        UI_Node *node = mNode;
        qCDebug(lcKivUiKernel) << "release of node" << node->UI_GetNodeID().c_str() << "deferred to the event loop";
        QTimer::singleShot(0, QCoreApplication::instance(), [node] { node->Release(); });
        return;
    }
    mNode->Release();
}

NodeWidget::NodeWidget(UI_Node *inNode) : mNode(inNode)
{
    setAttribute(Qt::WA_NoSystemBackground, false);
    setMouseTracking(true);
}

} // namespace kivui

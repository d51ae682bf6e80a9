#include <kivui/UI_SubView.h>

#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <kivcore/Assert.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QWidget>

#include <vector>

using kivcore::PointF;
using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivcore::utility::MakeIntrusive;

namespace kivui {
namespace {

// Records the hooks a size change runs.
class RecordingView : public UI_SubView {
public:
    std::vector<PointF> sizeChanges;
    int layouts = 0;
    int nodeChanges = 0;
    void UI_SizeChanged(PointF const &oldSize) override
    {
        sizeChanges.push_back(oldSize);
        UI_SubView::UI_SizeChanged(oldSize);
    }
    void UI_LayoutChildren() override
    {
        ++layouts;
        UI_SubView::UI_LayoutChildren();
    }
    void UI_NodeChanged() override { ++nodeChanges; }
};

// A new node placed in `parent`, at `rect` unless that is empty.
template <typename T = UI_SubView> IntrusivePtr<T> AddChild(UI_Container &parent, RectF const &rect = {})
{
    auto child = MakeIntrusive<T>();
    parent.ChildPushBack(child);
    if (!rect.IsEmpty()) child->UI_SetLocalRectF(rect);
    return child;
}

class KernelNodeTest : public ::testing::Test {
protected:
    IntrusivePtr<UI_SubView> root = MakeIntrusive<UI_SubView>();
};

TEST_F(KernelNodeTest, ChildrenMirrorTheWidgetTree)
{
    auto a = AddChild(*root);
    auto b = AddChild(*root);
    ASSERT_EQ(root->UI_CountChildren(), 2);
    EXPECT_EQ(root->UI_GetChild(0), a.get());
    EXPECT_EQ(root->UI_GetChild(1), b.get());
    EXPECT_EQ(root->UI_GetChild(2), nullptr);
    EXPECT_EQ(a->UI_GetParent(), root.get());
    EXPECT_EQ(a->UI_GetWidget()->parentWidget(), root->UI_GetWidget());

    // Moving a child to another parent takes it from the first one.
    b->ChildPushBack(a);
    EXPECT_EQ(root->UI_CountChildren(), 1);
    EXPECT_EQ(a->UI_GetParent(), b.get());
    EXPECT_EQ(a->UI_GetWidget()->parentWidget(), b->UI_GetWidget());
    EXPECT_TRUE(root->UI_IsAncestorOf(a.get()));

    root->ChildRemove(b.get());
    EXPECT_EQ(root->UI_CountChildren(), 0);
    EXPECT_EQ(b->UI_GetParent(), nullptr);
    EXPECT_EQ(b->UI_GetWidget()->parentWidget(), nullptr);
    // Removing a node that is not a child changes nothing.
    root->ChildRemove(a.get());
    EXPECT_EQ(b->UI_CountChildren(), 1);
}

TEST_F(KernelNodeTest, NodeOwnsItsWidgetAndDeleteChildrenDestroysUnheldChildren)
{
    QPointer<QWidget> held, unheld;
    {
        auto a = MakeIntrusive<UI_SubView>();
        held = a->UI_GetWidget();
        root->ChildPushBack(a);
        auto b = MakeIntrusive<UI_SubView>();
        unheld = b->UI_GetWidget();
        root->ChildPushBack(std::move(b));
        root->DeleteChildren();
        EXPECT_EQ(root->UI_CountChildren(), 0);
        EXPECT_TRUE(unheld.isNull());
        ASSERT_FALSE(held.isNull()); // a still holds its node
        EXPECT_EQ(held->parentWidget(), nullptr);
    }
    EXPECT_TRUE(held.isNull());

    // A widget deleted behind the node's back is simply gone for the node.
    auto c = AddChild(*root);
    delete c->UI_GetWidget();
    EXPECT_EQ(c->UI_GetWidget(), nullptr);
    c->UI_SetLocalRectF(RectF{1, 2, 3, 4});
    c->UI_Show(false);
    EXPECT_EQ(c->UI_GetLocalRectF(true), (RectF{1, 2, 3, 4}));
}

TEST_F(KernelNodeTest, CyclesAndNullChildrenAreRefused)
{
    int asserts = 0;
    auto previous = kivcore::debug::SetAssertHandler([&](kivcore::debug::AssertInfo const &) { ++asserts; });
    auto a = AddChild(*root);
    a->ChildPushBack(root);
    root->ChildPushBack(root);
    root->ChildPushBack(nullptr);
    kivcore::debug::SetAssertHandler(previous);
    EXPECT_EQ(asserts, 3);
    EXPECT_EQ(a->UI_CountChildren(), 0);
    EXPECT_EQ(root->UI_CountChildren(), 1);
}

TEST_F(KernelNodeTest, FloatGeometryIsKeptExactlyAndPushedRounded)
{
    auto a = AddChild(*root, RectF{10.4f, 3.5f, 20.3f, 19.0f});
    EXPECT_EQ(a->UI_GetLocalRectF(true), (RectF{10.4f, 3.5f, 20.3f, 19.0f}));
    EXPECT_EQ(a->UI_GetLocalRectF(false), (RectF{0.0f, 0.0f, 20.3f, 19.0f}));
    // Edges are rounded, not sizes: 10.4..30.7 covers pixels 10..31.
    EXPECT_EQ(a->UI_GetWidget()->geometry(), QRect(10, 4, 21, 19));

    // Two abutting float rectangles stay abutting on screen.
    auto b = AddChild(*root, RectF{30.7f, 3.5f, 5.0f, 19.0f});
    EXPECT_EQ(b->UI_GetWidget()->geometry().left(), a->UI_GetWidget()->geometry().right() + 1);
}

TEST_F(KernelNodeTest, CoordinatesAddOriginsUpToTheGivenAncestor)
{
    root->UI_SetLocalRectF(RectF{100, 100, 500, 500});
    auto a = AddChild(*root, RectF{10, 20, 300, 300});
    auto b = AddChild(*a, RectF{1.5f, 2.5f, 100, 100});
    auto c = AddChild(*b, RectF{3, 4, 10, 10});

    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(b.get()), (UI_Matrix{3, 4}));
    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(a.get()), (UI_Matrix{4.5f, 6.5f}));
    // The root's own origin is not part of its tree's coordinates.
    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(nullptr), (UI_Matrix{14.5f, 26.5f}));
    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(root.get()), (UI_Matrix{14.5f, 26.5f}));
    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(c.get()), (UI_Matrix{0, 0}));

    // A node in a sibling branch goes through the common coordinates.
    auto d = AddChild(*root, RectF{50, 60, 10, 10});
    EXPECT_EQ(c->UI_GetSelfToSpecificParentMatrix(d.get()), (UI_Matrix{14.5f - 50, 26.5f - 60}));

    // A window's global rectangle is its frame on screen; its children add their origins.
    root->UI_SetGlobalStructureRect(RectF{40, 50, 300, 200});
    EXPECT_EQ(root->UI_GetLocalRectF(false), (RectF{0, 0, 300, 200}));
    EXPECT_EQ(a->UI_GetGlobalStructureRect(), (RectF{50, 70, 300, 300}));
    a->UI_SetGlobalStructureRect(RectF{60, 60, 300, 300});
    EXPECT_EQ(a->UI_GetLocalRectF(true), (RectF{20, 10, 300, 300}));
}

TEST_F(KernelNodeTest, BindingsFollowTheParentsSizeChange)
{
    // Parent grows from 200x100 to 260x140 (dx 60, dy 40); child at 10,20 50x30.
    for (auto [binding, expected] : {std::pair{kBindTopLeft, RectF{10, 20, 50, 30}},
                                     {kBindWidth | kBindHeight, RectF{10, 20, 110, 70}},
                                     {kBindMoveRight | kBindMoveDown, RectF{70, 60, 50, 30}},
                                     {kBindMoveRight | kBindHeight, RectF{70, 20, 50, 70}}}) {
        auto parent = MakeIntrusive<UI_SubView>();
        parent->UI_SetLocalRectF(RectF{0, 0, 200, 100});
        auto child = AddChild(*parent, RectF{10, 20, 50, 30});
        child->UI_SetLayoutBinding(binding);
        parent->UI_SetLocalRectF(RectF{5, 5, 260, 140});
        EXPECT_EQ(child->UI_GetLocalRectF(true), expected) << "binding " << binding;
        // Shrinking back restores the original frame.
        parent->UI_SetLocalRectF(RectF{0, 0, 200, 100});
        EXPECT_EQ(child->UI_GetLocalRectF(true), (RectF{10, 20, 50, 30})) << "binding " << binding;
    }
}

TEST_F(KernelNodeTest, NestedBindingsCascadeAndLayoutsChildrenFalseSuppressesThem)
{
    auto parent = MakeIntrusive<RecordingView>();
    parent->UI_SetLocalRectF(RectF{0, 0, 100, 100});
    auto mid = AddChild<RecordingView>(*parent, RectF{0, 0, 100, 19});
    auto leaf = AddChild(*mid, RectF{0, 0, 80, 19});
    mid->UI_SetLayoutBinding(4);
    leaf->UI_SetLayoutBinding(4);
    mid->sizeChanges.clear();

    parent->UI_SetLocalRectF(RectF{0, 0, 150, 100});
    EXPECT_EQ(mid->UI_GetLocalRectF(true), (RectF{0, 0, 150, 19}));
    EXPECT_EQ(leaf->UI_GetLocalRectF(true), (RectF{0, 0, 130, 19}));
    EXPECT_EQ(mid->sizeChanges, (std::vector<PointF>{{100, 19}}));

    // Setting the frame with the switch off leaves the children alone.
    int const layoutsBefore = parent->layouts;
    parent->UI_SetLayoutsChildren(false);
    parent->UI_SetLocalRectF(RectF{0, 0, 300, 100});
    parent->UI_SetLayoutsChildren(true);
    EXPECT_EQ(parent->layouts, layoutsBefore);
    EXPECT_EQ(mid->UI_GetLocalRectF(true), (RectF{0, 0, 150, 19}));

    // A frame of the same size (a move) lays nothing out.
    parent->UI_SetLocalRectF(RectF{7, 7, 300, 100});
    EXPECT_EQ(parent->layouts, layoutsBefore);
    // An explicit UI_LayoutChildren outside a size change moves nothing.
    parent->UI_LayoutChildren();
    EXPECT_EQ(mid->UI_GetLocalRectF(true), (RectF{0, 0, 150, 19}));
}

TEST_F(KernelNodeTest, QtResizeOfTheWidgetReachesTheNode)
{
    root->UI_SetGlobalStructureRect(RectF{0, 0, 200, 100});
    auto child = AddChild(*root, RectF{0, 0, 200, 20});
    child->UI_SetLayoutBinding(kBindWidth);
    root->UI_Show(true);
    root->UI_GetWidget()->resize(320, 100);
    QApplication::processEvents();
    EXPECT_EQ(root->UI_GetLocalRectF(false), (RectF{0, 0, 320, 100}));
    EXPECT_EQ(child->UI_GetLocalRectF(true), (RectF{0, 0, 320, 20}));
    root->UI_Show(false);
}

TEST_F(KernelNodeTest, ShowEnableIdAndSearch)
{
    auto a = AddChild(*root);
    auto b = AddChild(*a);
    b->UI_SetNodeID("b");
    EXPECT_EQ(root->UI_FindNodeByID("b"), b.get());
    EXPECT_EQ(root->UI_FindNodeByID("zzz"), nullptr);
    EXPECT_EQ(b->UI_GetRoot(), root.get());

    // A node outside any widget tree never pops up as a window; it shows
    // once attached.
    auto loose = MakeIntrusive<UI_SubView>();
    loose->UI_Show(true);
    EXPECT_FALSE(loose->UI_GetWidget()->isVisible());

    root->UI_SetGlobalStructureRect(RectF{10, 10, 200, 100});
    EXPECT_FALSE(root->UI_IsShown()); // a window appears only when asked
    a->UI_Show(false);
    root->UI_Show(true);
    root->ChildPushBack(loose);
    EXPECT_TRUE(loose->UI_GetWidget()->isVisible());
    EXPECT_FALSE(a->UI_GetWidget()->isVisible());
    EXPECT_FALSE(b->UI_GetWidget()->isVisible());
    a->UI_Show(true);
    EXPECT_TRUE(b->UI_GetWidget()->isVisible());

    // A hidden node keeps its state when it moves to another parent.
    b->UI_Show(false);
    root->ChildPushBack(b);
    EXPECT_FALSE(b->UI_GetWidget()->isVisible());

    a->UI_SetEnabled(false);
    EXPECT_FALSE(a->UI_GetWidget()->isEnabled());
    root->UI_Show(false);
}

TEST_F(KernelNodeTest, NodeChangedRunsOverAttachedSubtreesAndSupplierIsInherited)
{
    auto a = MakeIntrusive<RecordingView>();
    auto b = AddChild<RecordingView>(*a);
    a->nodeChanges = b->nodeChanges = 0;
    root->ChildPushBack(a);
    EXPECT_EQ(a->nodeChanges, 1);
    EXPECT_EQ(b->nodeChanges, 1);

    // Any non-null address will do: the supplier is only handed on.
    auto *supplier = reinterpret_cast<drawbot::SupplierInterface *>(0x1000);
    root->UI_SetDrawSupplier(supplier);
    EXPECT_EQ(b->UI_GetDrawSupplier(), supplier);
    EXPECT_EQ(b->nodeChanges, 2);
    root->ChildRemove(a.get());
    EXPECT_EQ(b->UI_GetDrawSupplier(), nullptr);
    EXPECT_EQ(b->nodeChanges, 3);
    root->UI_SetDrawSupplier(nullptr);
}

TEST_F(KernelNodeTest, PaintingDrawsThroughTheNodesSupplier)
{
    class DrawingView : public UI_SubView {
    public:
        std::vector<drawbot::SupplierInterface const *> suppliers;
        void UI_Draw(drawbot::Drawbot &drawbot) override
        {
            suppliers.push_back(&drawbot.GetSupplier());
            drawbot.FillRect(RectF{0, 0, 10, 10}, Qt::red);
        }
    };
    root->UI_SetLocalRectF(RectF{0, 0, 40, 40});
    auto view = AddChild<DrawingView>(*root, RectF{5, 5, 20, 20});
    QImage image = root->UI_GetWidget()->grab().toImage();
    ASSERT_EQ(view->suppliers.size(), 1u);
    EXPECT_NE(view->suppliers[0], nullptr); // a fallback while detached
    EXPECT_EQ(image.pixelColor(7, 7), QColor(Qt::red));
    EXPECT_NE(image.pixelColor(20, 20), QColor(Qt::red));

    drawbot::QtSupplier supplier;
    root->UI_SetDrawSupplier(&supplier);
    root->UI_GetWidget()->grab();
    ASSERT_EQ(view->suppliers.size(), 2u);
    EXPECT_EQ(view->suppliers[1], &supplier);
    root->UI_SetDrawSupplier(nullptr);
}

} // namespace
} // namespace kivui

// Node geometry: setting the frames of 1,000 nodes must stay under 5 ms.
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>

#include <benchmark/benchmark.h>

#include <QApplication>

#include <vector>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivcore::utility::MakeIntrusive;

namespace {

struct Tree {
    IntrusivePtr<kivui::UI_SubView> root = MakeIntrusive<kivui::UI_SubView>();
    std::vector<kivui::UI_Node *> nodes;

    template <typename Node> explicit Tree(int inCount, Node *)
    {
        root->UI_SetGlobalStructureRect(RectF{0, 0, 600, 20000});
        for (int i = 0; i < inCount; ++i) {
            auto node = MakeIntrusive<Node>();
            node->UI_SetLayoutBinding(kivui::kBindWidth);
            nodes.push_back(node.get());
            root->ChildPushBack(node);
        }
    }
};

template <typename Node> void SetFrames(benchmark::State &state, bool shown)
{
    Tree tree(1000, static_cast<Node *>(nullptr));
    if (shown) {
        tree.root->UI_Show(true);
        QApplication::processEvents();
    }
    float grow = 0.0f;
    for (auto _ : state) {
        grow = grow > 10.0f ? 0.0f : grow + 0.5f;
        float y = 0.0f;
        for (kivui::UI_Node *node : tree.nodes) {
            node->UI_SetLocalRectF(RectF{10.0f, y, 400.0f + grow, 19.0f});
            y += 19.0f;
        }
    }
    state.SetItemsProcessed(state.iterations() * 1000);
    tree.root->UI_Show(false);
}

void BM_SetFrames1000SubViews(benchmark::State &state)
{
    SetFrames<kivui::UI_SubView>(state, false);
}
void BM_SetFrames1000SubViewsShown(benchmark::State &state)
{
    SetFrames<kivui::UI_SubView>(state, true);
}
void BM_SetFrames1000TextEditsShown(benchmark::State &state)
{
    SetFrames<kivui::UI_TextEdit>(state, true);
}

// One parent resize lays out 1,000 children bound to its width.
void BM_ParentResizeLaysOut1000Children(benchmark::State &state)
{
    Tree tree(1000, static_cast<kivui::UI_SubView *>(nullptr));
    tree.root->UI_Show(true);
    QApplication::processEvents();
    float width = 600.0f;
    for (auto _ : state) {
        width = width > 700.0f ? 600.0f : width + 1.0f;
        tree.root->UI_SetLocalRectF(RectF{0, 0, width, 20000});
    }
    state.SetItemsProcessed(state.iterations() * 1000);
    tree.root->UI_Show(false);
}

BENCHMARK(BM_SetFrames1000SubViews)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetFrames1000SubViewsShown)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetFrames1000TextEditsShown)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParentResizeLaysOut1000Children)->Unit(benchmark::kMillisecond);

} // namespace

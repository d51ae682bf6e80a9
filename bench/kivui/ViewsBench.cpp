// Cost of showing a large tree: UI_MultiColumnTree with a cell view per row
// (made lazily, for visible rows only) against a bare QTreeWidget of plain
// items, both built, shown and painted inside the timed loop.
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QScrollBar>
#include <QTreeView>
#include <QTreeWidget>

#include <string>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivui::UI_MultiColumnTree;
using kivui::UI_SubView;

namespace {

constexpr int kRows = 10000;

std::u16string Label(int i)
{
    std::string const s = "Row " + std::to_string(i);
    return std::u16string(s.begin(), s.end());
}

// A cell like the metadata tree's: a container with a label-sized child.
void MakeCell(UI_MultiColumnTree::RowPtr const &inRow)
{
    if (inRow->GetCellView()) return;
    IntrusivePtr<UI_SubView> cell(new UI_SubView);
    IntrusivePtr<UI_SubView> label(new UI_SubView);
    label->UI_SetLocalRectF(RectF{2, 2, 120, 16});
    cell->ChildPushBack(label);
    inRow->SetCellView(cell);
}

void Flush(QWidget *inWidget)
{
    QApplication::processEvents();
    QApplication::processEvents();
    (void)inWidget->grab(); // paints every visible row and cell
}

IntrusivePtr<UI_MultiColumnTree> BuildTree(kivui::drawbot::QtSupplier &inSupplier, bool inBatch = false)
{
    IntrusivePtr<UI_MultiColumnTree> tree(new UI_MultiColumnTree);
    tree->UI_SetDrawSupplier(&inSupplier);
    tree->UI_SetLocalRectF(RectF{0, 0, 400, 600});
    tree->SetRowVisibilityChangedFxn(&MakeCell);
    if (inBatch) {
        auto const rows = tree->AppendRows({}, kRows);
        for (int i = 0; i < kRows; ++i)
            rows[static_cast<std::size_t>(i)]->SetText(0, Label(i));
    } else {
        for (int i = 0; i < kRows; ++i)
            tree->AppendRow()->SetText(0, Label(i));
    }
    return tree;
}

// Argument 1: the rows are appended in one batch (AppendRows).
void BM_MultiColumnTree_10000CellRows_BuildShowPaint(benchmark::State &state)
{
    kivui::drawbot::QtSupplier supplier;
    int placed = 0;
    for (auto _ : state) {
        auto tree = BuildTree(supplier, state.range(0) != 0);
        tree->GetTreeView()->show();
        Flush(tree->GetTreeView());
        placed = tree->CountPlacedCellViews();
        tree.reset();
    }
    state.counters["placedCells"] = placed;
}
BENCHMARK(BM_MultiColumnTree_10000CellRows_BuildShowPaint)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_QTreeWidget_10000PlainItems_BuildShowPaint(benchmark::State &state)
{
    for (auto _ : state) {
        auto *tree = new QTreeWidget;
        tree->setGeometry(0, 0, 400, 600);
        tree->setUniformRowHeights(true);
        QList<QTreeWidgetItem *> items;
        items.reserve(kRows);
        for (int i = 0; i < kRows; ++i)
            items.append(new QTreeWidgetItem(QStringList{QString::fromStdU16String(Label(i))}));
        tree->addTopLevelItems(items);
        tree->show();
        Flush(tree);
        delete tree;
    }
}
BENCHMARK(BM_QTreeWidget_10000PlainItems_BuildShowPaint)->Unit(benchmark::kMillisecond)->UseRealTime();

// Showing and painting only, on a tree built once: the part that depends on
// the visible rows alone.
void BM_MultiColumnTree_10000CellRows_ShowPaint(benchmark::State &state)
{
    kivui::drawbot::QtSupplier supplier;
    auto tree = BuildTree(supplier);
    QTreeView *view = tree->GetTreeView();
    for (auto _ : state) {
        view->show();
        Flush(view);
        state.PauseTiming();
        view->hide();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MultiColumnTree_10000CellRows_ShowPaint)->Unit(benchmark::kMillisecond)->UseRealTime();

// One page down and repaint: new rows are announced and get cells, far
// rows give theirs back.
void BM_MultiColumnTree_10000CellRows_ScrollPage(benchmark::State &state)
{
    kivui::drawbot::QtSupplier supplier;
    auto tree = BuildTree(supplier);
    QTreeView *view = tree->GetTreeView();
    view->show();
    Flush(view);
    QScrollBar *bar = view->verticalScrollBar();
    for (auto _ : state) {
        int next = bar->value() + view->viewport()->height();
        if (next >= bar->maximum()) next = 0;
        bar->setValue(next);
        Flush(view);
    }
    state.counters["placedCells"] = tree->CountPlacedCellViews();
}
BENCHMARK(BM_MultiColumnTree_10000CellRows_ScrollPage)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

#include <kivui/UI_MultiColumnTree.h>

#include <kivcore/Assert.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <gtest/gtest.h>

#include "UiTestSupport.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QScrollBar>
#include <QTreeView>

#include <map>
#include <set>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivui::UI_MultiColumnTree;
using kivui::UI_SubView;
using kivui::test::Settle;
using RowPtr = UI_MultiColumnTree::RowPtr;
using Disclosures = std::vector<std::pair<RowPtr, bool>>;

namespace {

class TreeTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        tree->UI_SetDrawSupplier(&supplier);
        tree->UI_SetLocalRectF(RectF{0, 0, 300, 200});
        tree->SetRowDisclosureChangedFxn(
            [this](RowPtr const &row, bool opened) { disclosures.emplace_back(row, opened); });
        tree->SetSelectionChangedFxn([this] { ++selections; });
        tester = std::make_unique<QAbstractItemModelTester>(view()->model(),
                                                            QAbstractItemModelTester::FailureReportingMode::Fatal);
    }

    QTreeView *view() const { return tree->GetTreeView(); }

    void Show() { kivui::test::ShowActiveWindow(*tree, RectF{0, 0, 300, 200}); }

    // Appends inCount top-level rows whose first text is their number.
    std::vector<RowPtr> Fill(int inCount, RowPtr const &inParent = {})
    {
        std::vector<RowPtr> rows;
        for (int i = 0; i < inCount; ++i) {
            rows.push_back(tree->AppendRow(inParent));
            rows.back()->SetText(0, QString::number(i).toStdU16String());
        }
        return rows;
    }

    // Gives every announced row a fresh cell view and counts the calls.
    void MakeCellsLazily()
    {
        tree->SetRowVisibilityChangedFxn([this](RowPtr const &row) {
            ++announced[row.get()];
            if (!row->GetCellView()) row->SetCellView(IntrusivePtr<UI_SubView>(new UI_SubView));
        });
    }

    // What the tree reports outlives the tree; the model tester goes first.
    kivui::drawbot::QtSupplier supplier;
    std::map<kivui::UI_MultiColumnTreeRow const *, int> announced;
    Disclosures disclosures;
    int selections = 0;
    IntrusivePtr<UI_MultiColumnTree> tree{new UI_MultiColumnTree};
    std::unique_ptr<QAbstractItemModelTester> tester;
};

TEST_F(TreeTest, RowsKnowTheirParentsChildrenAndPositions)
{
    auto top = Fill(3);
    auto kids = Fill(2, top[1]);
    auto grandKid = tree->AppendRow(kids[0]);
    auto inserted = tree->InsertRow(top[1], 0);
    auto clamped = tree->InsertRow({}, 99);
    auto batch = tree->AppendRows(top[2], 3);
    EXPECT_TRUE(tree->AppendRows(top[2], 0).empty());

    EXPECT_EQ(tree->CountRows(), 4);
    EXPECT_EQ(tree->GetRow(3), clamped);
    EXPECT_EQ(top[1]->CountChildRows(), 3);
    EXPECT_EQ(top[1]->GetChildRow(0), inserted);
    ASSERT_EQ(batch.size(), 3u);
    EXPECT_EQ(top[2]->GetChildRow(2), batch[2]);
    EXPECT_EQ(kids[1]->GetIndexInParent(), 2);
    EXPECT_EQ(grandKid->GetParentRow(), kids[0]);
    EXPECT_EQ(grandKid->GetDepth(), 2);
    EXPECT_FALSE(top[0]->GetChildRow(0));
    EXPECT_FALSE(top[1]->GetChildRow(-1));

    // The model sees the same structure.
    QAbstractItemModel const *model = view()->model();
    EXPECT_EQ(model->rowCount(), 4);
    QModelIndex const second = model->index(1, 0);
    EXPECT_EQ(model->rowCount(second), 3);
    EXPECT_EQ(model->index(1, 0, second).data().toString(), QStringLiteral("0"));

    // Removing a row detaches its whole subtree but keeps it as data.
    tree->RemoveRow(kids[0]);
    EXPECT_EQ(top[1]->CountChildRows(), 2);
    EXPECT_EQ(kids[1]->GetIndexInParent(), 1);
    EXPECT_EQ(kids[0]->GetTree(), nullptr);
    EXPECT_FALSE(kids[0]->GetParentRow());
    EXPECT_EQ(grandKid->GetTree(), nullptr);
    EXPECT_EQ(grandKid->GetParentRow(), kids[0]);

    // A removed row is no parent for new rows.
    long const asserts = kivcore::debug::AssertCount();
    kivcore::debug::SetAssertHandler([](kivcore::debug::AssertInfo const &) {});
    EXPECT_FALSE(tree->AppendRow(kids[0]));
    kivcore::debug::SetAssertHandler({});
    EXPECT_EQ(kivcore::debug::AssertCount(), asserts + 1);

    tree->DeleteAllRows();
    EXPECT_EQ(tree->CountRows(), 0);
    EXPECT_EQ(top[2]->GetTree(), nullptr);
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(TreeTest, CellViewsAreMadeOnlyForVisibleRowsAndDroppedFarAway)
{
    tester.reset(); // it checks the whole model on every insertion
    Fill(10000);
    MakeCellsLazily();
    Show();

    auto visible = tree->GetVisibleRows();
    ASSERT_FALSE(visible.empty());
    int const perPage = 200 / 20 + 1;
    EXPECT_LE(static_cast<int>(visible.size()), perPage + 1);
    EXPECT_EQ(announced.size(), visible.size());
    EXPECT_EQ(visible.front(), tree->GetRow(0));
    EXPECT_EQ(tree->CountPlacedCellViews(), static_cast<int>(visible.size()));
    EXPECT_FALSE(tree->GetRow(500)->IsVisible());

    // A placed cell fills its row, right of the disclosure area.
    auto const first = tree->GetRow(0);
    RectF const rowRect = tree->GetRowRect(first);
    QWidget *cell = first->GetCellView()->UI_GetWidget();
    ASSERT_TRUE(cell->isVisible());
    QPoint const cellTopLeft = cell->mapTo(view(), QPoint(0, 0));
    EXPECT_EQ(cellTopLeft, QPoint(int(rowRect.x), int(rowRect.y)));
    EXPECT_EQ(first->GetCellView()->UI_GetLocalRectF(false), (RectF{0, 0, rowRect.width, rowRect.height}));

    // Scrolling page by page announces each row once and keeps the number
    // of placed cells bounded.
    for (int page = 0; page < 60; ++page) {
        view()->verticalScrollBar()->setValue(view()->verticalScrollBar()->value() + 180);
        Settle();
        EXPECT_LE(tree->CountPlacedCellViews(), 2 * perPage + 40);
    }
    for (auto const &[row, count] : announced)
        EXPECT_EQ(count, 1);
    EXPECT_FALSE(first->IsVisible());
    EXPECT_FALSE(cell->isVisible());

    // Back at the top the first row is announced again and its existing
    // cell goes back on screen.
    view()->verticalScrollBar()->setValue(0);
    Settle();
    EXPECT_EQ(announced[first.get()], 2);
    EXPECT_TRUE(cell->isVisible());
    EXPECT_EQ(cell->mapTo(view(), QPoint(0, 0)), cellTopLeft);

    view()->verticalScrollBar()->setValue(view()->verticalScrollBar()->maximum());
    Settle();
    EXPECT_EQ(tree->GetVisibleRows().back(), tree->GetRow(9999));
}

TEST_F(TreeTest, QuietTreeAnnouncesNothingUntilItSpeaksAgain)
{
    Fill(50);
    auto parent = tree->GetRow(0);
    Fill(3, parent);
    MakeCellsLazily();

    tree->SetIsQuiet(true);
    Show();
    tree->OpenRow(parent, true);
    tree->SelectRow(tree->GetRow(2));
    Settle();
    EXPECT_TRUE(announced.empty());
    EXPECT_TRUE(disclosures.empty());
    EXPECT_EQ(selections, 0);
    EXPECT_TRUE(parent->IsOpened());

    tree->SetIsQuiet(false);
    Settle();
    EXPECT_EQ(announced.size(), tree->GetVisibleRows().size());
    EXPECT_EQ(announced.count(parent->GetChildRow(0).get()), 1u);
    EXPECT_EQ(tree->CountPlacedCellViews(), static_cast<int>(announced.size()));
}

TEST_F(TreeTest, DisclosureIsReportedOnceAndOpenedRowsFollowDisplayOrder)
{
    auto top = Fill(3);
    auto kids = Fill(2, top[0]);
    auto grandKids = Fill(2, kids[1]);
    auto lateKids = Fill(1, top[2]);
    Show();

    tree->OpenRow(top[0], true);
    tree->OpenRow(top[0], true);
    kids[1]->SetOpened(true);
    EXPECT_EQ(disclosures, (Disclosures{{top[0], true}, {kids[1], true}}));
    EXPECT_TRUE(view()->isExpanded(view()->model()->index(0, 0)));

    std::vector<RowPtr> const expected{top[0], kids[0], kids[1], grandKids[0], grandKids[1], top[1], top[2]};
    EXPECT_EQ(tree->GetOpenedRows(), expected);

    // A closed ancestor hides an opened descendant.
    tree->OpenRow(top[0], false);
    EXPECT_EQ(tree->GetOpenedRows(), top);
    EXPECT_TRUE(kids[1]->IsOpened());

    // Heights: explicit ones count as set, the rest take the default.
    tree->OpenRow(top[0], true);
    kids[0]->SetHeight(35.0f);
    tree->SetDefaultRowHeight(18.0f);
    EXPECT_FLOAT_EQ(tree->GetFullOpenedRowsHeight(), 35.0f + 6 * 18.0f);
    tree->Layout();
    EXPECT_EQ(tree->GetRowRect(kids[0]).height, 35.0f);
    EXPECT_EQ(tree->GetRowRect(kids[1]).height, 18.0f);
    EXPECT_EQ(tree->GetRowRect(kids[1]).y, tree->GetRowRect(kids[0]).y + 35.0f);

    // A row opened before it had children shows them once they come.
    tree->OpenRow(lateKids[0], true);
    auto latest = tree->AppendRow(lateKids[0]);
    tree->OpenRow(top[2], true);
    tree->Layout();
    EXPECT_FALSE(tree->GetRowRect(latest).IsEmpty());
}

TEST_F(TreeTest, UserOpensRowsWithKeysAndSelectsThemWithTheMouse)
{
    auto top = Fill(2);
    Fill(2, top[0]);
    Show();

    // The view's own expanding and collapsing, by mouse or keys, reach the rows.
    view()->setFocus();
    view()->setCurrentIndex(view()->model()->index(0, 0));
    QTest::keyClick(view(), Qt::Key_Right);
    EXPECT_TRUE(top[0]->IsOpened());
    QTest::keyClick(view(), Qt::Key_Left);
    EXPECT_FALSE(top[0]->IsOpened());
    EXPECT_EQ(disclosures, (Disclosures{{top[0], true}, {top[0], false}}));

    // A click on a row selects it.
    selections = 0;
    RectF const second = tree->GetRowRect(top[1]);
    QPoint const inSecond = view()->viewport()->mapFrom(view(), QPoint(int(second.x + 5), int(second.y + 5)));
    QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, inSecond);
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<RowPtr>{top[1]});
    EXPECT_GE(selections, 1);
    EXPECT_EQ(tree->GetRowAtPoint(kivcore::PointF{second.x + 5, second.y + 5}), top[1]);
}

TEST_F(TreeTest, SortingReordersEveryLevelAndKeepsCellsWithTheirRows)
{
    for (int v : {5, 3, 9, 1})
        tree->AppendRow()->SetText(0, QString::number(v).toStdU16String());
    for (int v : {2, 8, 4})
        tree->AppendRow(tree->GetRow(0))->SetText(0, QString::number(v).toStdU16String());
    tree->OpenRow(tree->GetRow(0), true);
    MakeCellsLazily();
    Show();

    tree->SortTree([](RowPtr const &a, RowPtr const &b) { return a->GetText(0) < b->GetText(0); });
    std::u16string order;
    for (auto const &row : tree->GetOpenedRows())
        order += row->GetText(0) + u" ";
    EXPECT_EQ(order, u"1 3 5 2 4 8 9 ");
    for (int i = 0; i < tree->CountRows(); ++i)
        EXPECT_EQ(tree->GetRow(i)->GetIndexInParent(), i);

    // The model agrees, and every cell sits on its own row.
    EXPECT_EQ(view()->model()->index(0, 0).data().toString(), QStringLiteral("1"));
    Settle();
    for (auto const &row : tree->GetOpenedRows()) {
        ASSERT_TRUE(row->GetCellView());
        RectF const r = tree->GetRowRect(row);
        EXPECT_EQ(row->GetCellView()->UI_GetWidget()->mapTo(view(), QPoint(0, 0)), QPoint(int(r.x), int(r.y)));
    }
}

TEST_F(TreeTest, PlainRowsArePaintedThroughTheDrawCellFunction)
{
    tree->SetColumnCount(2);
    auto rows = Fill(3);
    rows[1]->SetCellView(IntrusivePtr<UI_SubView>(new UI_SubView));
    std::set<std::pair<int, int>> painted; // (row number, column)
    std::map<int, RectF> columnRects;
    tree->SetDrawCellFxn([&](kivui::drawbot::Drawbot &drawbot, RowPtr const &row, int column, RectF const &rect) {
        EXPECT_TRUE(drawbot.IsDrawing());
        EXPECT_EQ(&drawbot.GetSupplier(), &supplier);
        painted.emplace(row->GetIndexInParent(), column);
        columnRects[column] = rect;
        drawbot.DrawText(row->GetText(0), rect);
    });
    tree->SetColumnsAutoResize(false);
    tree->SetColumnWidth(0, 120);
    tree->SetColumnWidth(1, 80);
    Show();
    (void)view()->viewport()->grab();

    std::set<std::pair<int, int>> const expected{{0, 0}, {0, 1}, {2, 0}, {2, 1}};
    EXPECT_EQ(painted, expected);
    EXPECT_EQ(columnRects[1].x, columnRects[0].x + columnRects[0].width);
    EXPECT_EQ(columnRects[1].width, 80.0f);
    EXPECT_EQ(columnRects[0].height, 20.0f);
}

TEST_F(TreeTest, ColumnsTakeHeadersWidthsAndOptions)
{
    // As the error list sets itself up.
    tree->SetColumnCount(2);
    tree->SetGridLines(true);
    tree->SetShowHeader(true);
    tree->SetColumnHeader(0, u"Description");
    tree->SetColumnHeader(1, u"Context");
    tree->SetColumnsAutoResize(true);
    tree->SetColumnWidth(0, 200);
    tree->SetColumnWidth(1, 20);
    tree->SetRootIsDecorated(false);
    Fill(3);
    tree->Layout();
    Show();

    EXPECT_EQ(view()->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Context"));
    EXPECT_EQ(tree->GetColumnWidth(0), 200.0f);
    // The last column takes what the first leaves.
    EXPECT_EQ(tree->GetColumnWidth(0) + tree->GetColumnWidth(1), float(view()->viewport()->width()));
    EXPECT_EQ(tree->GetColumnHeader(5), u"");

    // Grid lines are painted between the rows.
    QImage const image = view()->viewport()->grab().toImage();
    QColor const grid = view()->palette().color(QPalette::Mid);
    RectF const r = tree->GetRowRect(tree->GetRow(0));
    QPoint const onLine = view()->viewport()->mapFrom(view(), QPoint(int(r.x + 150), int(r.Bottom() - 1)));
    EXPECT_EQ(image.pixelColor(onLine).rgb(), grid.rgb());
    EXPECT_NE(image.pixelColor(onLine + QPoint(0, -3)).rgb(), grid.rgb());

    tree->SetColumnCount(0);
    EXPECT_EQ(tree->GetColumnCount(), 1);
}

TEST_F(TreeTest, SelectionFollowsTheMode)
{
    auto rows = Fill(4);
    Show();
    tree->SelectRow(rows[2]);
    tree->SelectRow(rows[1]);
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<RowPtr>{rows[1]});

    tree->SetSelectionMode(UI_MultiColumnTree::SelectionMode::kMultiple);
    tree->SelectRow(rows[3]);
    tree->SelectRow(rows[0]);
    EXPECT_EQ(tree->GetSelectedRows(), (std::vector<RowPtr>{rows[0], rows[1], rows[3]}));
    tree->SelectRow(rows[1], false);
    EXPECT_EQ(tree->GetSelectedRows(), (std::vector<RowPtr>{rows[0], rows[3]}));

    tree->SetSelectionMode(UI_MultiColumnTree::SelectionMode::kNone);
    tree->ClearSelection();
    tree->SelectRow(rows[2]);
    EXPECT_TRUE(tree->GetSelectedRows().empty());
}

TEST_F(TreeTest, CellViewsLeaveWithTheirRowsAndOutliveTheTree)
{
    auto rows = Fill(5);
    MakeCellsLazily();
    Show();
    auto cell = rows[1]->GetCellView();
    ASSERT_TRUE(cell);
    QPointer<QWidget> cellWidget = cell->UI_GetWidget();
    ASSERT_TRUE(cellWidget->isVisible());

    // Replacing a placed cell swaps the views on screen.
    auto replacement = IntrusivePtr<UI_SubView>(new UI_SubView);
    rows[1]->SetCellView(replacement);
    EXPECT_EQ(cell->UI_GetParent(), nullptr);
    EXPECT_TRUE(cellWidget);
    EXPECT_FALSE(cellWidget->isVisible());
    Settle();
    EXPECT_TRUE(replacement->UI_GetWidget()->isVisible());
    EXPECT_EQ(replacement->UI_GetParent(), tree.get());

    // Removing a row takes its cell out of the tree, alive.
    tree->RemoveRow(rows[1]);
    Settle();
    EXPECT_EQ(replacement->UI_GetParent(), nullptr);
    ASSERT_TRUE(replacement->UI_GetWidget());
    EXPECT_FALSE(replacement->UI_GetWidget()->isVisible());
    EXPECT_EQ(tree->CountPlacedCellViews(), 4);

    // Rows held after the tree is gone keep their cells, detached.
    auto held = rows[2];
    auto heldCell = held->GetCellView();
    tester.reset();
    tree.reset();
    Settle();
    EXPECT_EQ(held->GetTree(), nullptr);
    EXPECT_EQ(heldCell->UI_GetParent(), nullptr);
    EXPECT_NE(heldCell->UI_GetWidget(), nullptr);
    held->SetOpened(true); // needs no tree
}

TEST_F(TreeTest, ScrollRowIntoViewOpensAncestorsAndReachesDeepRows)
{
    auto top = Fill(40);
    auto kids = Fill(3, top[30]);
    MakeCellsLazily();
    Show();
    EXPECT_FALSE(kids[2]->IsVisible());

    tree->ScrollRowIntoView(kids[2]);
    Settle();
    EXPECT_TRUE(top[30]->IsOpened());
    EXPECT_TRUE(kids[2]->IsVisible());
    RectF const r = tree->GetRowRect(kids[2]);
    EXPECT_GE(r.y, 0.0f);
    EXPECT_LE(r.Bottom(), float(view()->height()));
}

// Placing a cell only repositions widgets; changes that come in the same turn
// of the event loop must still lay the rows out.
TEST_F(TreeTest, ChangesMadeWhileACellIsBeingPlacedAreLaidOut)
{
    auto rows = Fill(20);
    auto kids = Fill(2, rows[0]);
    MakeCellsLazily();
    Show();
    RectF const firstRect = tree->GetRowRect(rows[0]);

    rows[1]->SetCellView(IntrusivePtr<UI_SubView>(new UI_SubView)); // placed at once
    auto inserted = tree->InsertRow({}, 0);
    Settle();
    EXPECT_EQ(tree->GetRowRect(inserted).y, firstRect.y);
    tree->OpenRow(rows[0], true);
    Settle();

    EXPECT_EQ(tree->GetRowRect(inserted).y, firstRect.y);
    EXPECT_EQ(tree->GetRowRect(rows[0]).y, firstRect.y + 20);
    EXPECT_EQ(tree->GetRowRect(kids[1]).y, firstRect.y + 60);
    RectF const second = tree->GetRowRect(rows[1]);
    EXPECT_EQ(rows[1]->GetCellView()->UI_GetWidget()->mapTo(view(), QPoint(0, 0)),
              QPoint(int(second.x), int(second.y)));
    EXPECT_EQ(second.y, firstRect.y + 80);
}

} // namespace

#include <kivmetadataui/TableLayout.h>

#include "BindingTestSupport.h"

#include <kivcore/Exceptions.h>
#include <kivui/UI_SubView.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

using kivcore::PointF;
using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadataui::layout::LayoutItem;
using kivmetadataui::layout::RowItem;
using kivmetadataui::layout::TableLayout;
using kivmetadataui::layout::TableLayoutDelegate;
using kivui::UI_SubView;

namespace {

IntrusivePtr<UI_SubView> MakeView(float inWidth, float inHeight)
{
    IntrusivePtr<UI_SubView> view(new UI_SubView);
    view->UI_SetLocalRectF(RectF{0, 0, inWidth, inHeight});
    return view;
}

std::shared_ptr<LayoutItem> Item(float inWidth, float inHeight)
{
    return std::make_shared<LayoutItem>(MakeView(inWidth, inHeight));
}

std::shared_ptr<TableLayout> Table(float inWidth = 500.0f)
{
    return std::make_shared<TableLayout>(MakeView(inWidth, 0.0f));
}

// A row with a label of the given measured width and a content cell.
std::shared_ptr<RowItem> LabelledRow(float inLabelWidth, float inContentHeight = 19.0f)
{
    auto row = std::make_shared<RowItem>();
    row->SetColumnItem(0, Item(inLabelWidth, 15.0f));
    row->SetColumnItem(1, Item(50.0f, inContentHeight));
    return row;
}

// Measures a view item by its view's own width, as a text measurer would.
float MeasureByViewWidth(LayoutItem const &inItem)
{
    return inItem.mView->UI_GetLocalRectF(false).width;
}

class RecordingDelegate : public TableLayoutDelegate {
public:
    explicit RecordingDelegate(IntrusivePtr<UI_SubView> inContainer) : mContainer(std::move(inContainer)) {}
    IntrusivePtr<UI_SubView> GetContainerView(TableLayout &) override { return mContainer; }
    void SetContentSize(TableLayout &, PointF const &inSize) override { mSizes.push_back(inSize); }

    IntrusivePtr<UI_SubView> mContainer;
    std::vector<PointF> mSizes;
};

class TableLayoutTest : public ::testing::Test {
protected:
    void ExpectOneAssert(std::string const &inFunction, std::string const &inCondition)
    {
        EXPECT_EQ(mAsserts.Take(),
                  std::vector<std::string>{"layout/src/TableLayout|" + inFunction + "|" + inCondition});
    }

    kivtest::AssertRecorder mAsserts;
};

TEST_F(TableLayoutTest, StacksRowsWithMarginsGapsAndTheAbutSentinel)
{
    auto table = Table();
    table->InsertRow(1, Item(50, 19));
    table->InsertRow(1, Item(50, 30));
    EXPECT_EQ(table->Layout(), 76.0f);
    EXPECT_EQ(table->GetRow(0)->GetView()->UI_GetLocalRectF(true), (RectF{10, 10, 480, 19}));
    EXPECT_EQ(table->GetRow(1)->GetView()->UI_GetLocalRectF(true), (RectF{10, 36, 480, 30}));

    // Space before is ignored on the first row only; space after always counts.
    table->GetRow(0)->SetSpaceBefore(5);
    table->GetRow(1)->SetSpaceBefore(4);
    table->GetRow(0)->SetSpaceAfter(2);
    EXPECT_EQ(table->Layout(), 82.0f);
    EXPECT_EQ(table->GetRow(1)->GetView()->UI_GetLocalRectF(true).y, 42.0f);

    // -1.0 makes the next row start one unit above the first row's bottom.
    table->GetRow(1)->SetSpaceBefore(0);
    table->GetRow(0)->SetSpaceAfter(RowItem::kAbutNextRow);
    EXPECT_EQ(table->Layout(), 68.0f);
    EXPECT_EQ(table->GetRow(1)->GetView()->UI_GetLocalRectF(true).y, 28.0f);
    // Any other negative value keeps the gap.
    table->GetRow(0)->SetSpaceAfter(-2);
    EXPECT_EQ(table->Layout(), 74.0f);

    table->SetCollapsed(true);
    EXPECT_EQ(table->Layout(), 0.0f);
}

TEST_F(TableLayoutTest, MarginMaskSelectsEachMargin)
{
    struct Case {
        unsigned char mask;
        float left, top, right, bottom;
    };
    for (Case c : {Case{0, 0, 0, 0, 0}, Case{1, 10, 0, 0, 0}, Case{2, 0, 10, 0, 0}, Case{4, 0, 0, 10, 0},
                   Case{8, 0, 0, 0, 10}, Case{5, 10, 0, 10, 0}, Case{255, 10, 10, 10, 10}}) {
        auto table = Table(300);
        table->SetMargins(kivcore::Flags<unsigned char>(c.mask));
        table->InsertRow(LabelledRow(60));
        EXPECT_EQ(table->Layout(), c.top + 19.0f + c.bottom) << int(c.mask);
        EXPECT_EQ(table->GetRow(0)->GetView()->UI_GetLocalRectF(true),
                  (RectF{c.left, c.top, 300 - c.left - c.right, 19}))
            << int(c.mask);
    }
}

TEST_F(TableLayoutTest, PlacesCellsInTheirColumns)
{
    auto table = Table(500);
    auto row = LabelledRow(60, 25);
    table->InsertRow(row);
    table->Layout();

    // Label column: default width, own y and height; content column starts
    // 110 from the row, i.e. 120 from the table's left edge.
    EXPECT_EQ(row->GetColumnItem(0)->mView->UI_GetLocalRectF(true), (RectF{0, 2, 100, 15}));
    EXPECT_EQ(row->GetColumnItem(1)->mView->UI_GetLocalRectF(true), (RectF{110, 0, 370, 25}));
    EXPECT_EQ(row->GetView()->UI_GetLocalRectF(true), (RectF{10, 10, 480, 25}));

    // Explicit widths win over the column widths.
    row->GetColumnItem(0)->mWidth = 40;
    row->GetColumnItem(1)->mWidth = 90;
    table->Layout();
    EXPECT_EQ(row->GetColumnItem(0)->mView->UI_GetLocalRectF(true).width, 40.0f);
    EXPECT_EQ(row->GetColumnItem(1)->mView->UI_GetLocalRectF(true), (RectF{110, 0, 90, 25}));

    // A layout function sizes its view inside the proposed cell; the label
    // width function hears the table's label width.
    std::vector<RectF> proposed;
    std::vector<float> labelWidths;
    row->GetColumnItem(1)->mLayoutFunction = [&](UI_SubView &, RectF &ioRect) {
        proposed.push_back(ioRect);
        ioRect.y = 4;
        ioRect.height = 40;
    };
    row->GetColumnItem(0)->mLabelWidthFunction = [&](std::uint64_t inIndex, float inWidth) {
        EXPECT_EQ(inIndex, 0u);
        labelWidths.push_back(inWidth);
    };
    table->SetLabelWidth(130);
    EXPECT_EQ(table->Layout(), 10.0f + 44.0f + 10.0f);
    ASSERT_EQ(proposed.size(), 1u);
    // Proposed height is the row's height from the previous pass.
    EXPECT_EQ(proposed[0], (RectF{140, 0, 90, 25}));
    EXPECT_EQ(labelWidths, std::vector<float>{130});
    EXPECT_EQ(row->GetColumnItem(1)->mView->UI_GetLocalRectF(true), (RectF{140, 4, 90, 40}));
}

TEST_F(TableLayoutTest, SetColumnItemCentresShortCellsAndBindsContent)
{
    struct Case {
        float height;
        float y;
        float resultHeight;
    };
    for (Case c :
         {Case{13, 3, 13}, Case{14, 2, 14}, Case{18, 0, 18}, Case{0, 0, 19}, Case{19, 0, 19}, Case{30, 0, 30}}) {
        RowItem row;
        auto item = Item(40, c.height);
        row.SetColumnItem(1, item);
        EXPECT_EQ(item->mView->UI_GetLocalRectF(true), (RectF{0, c.y, 40, c.resultHeight})) << c.height;
    }

    RowItem row;
    EXPECT_EQ(row.GetView()->UI_GetLayoutBinding().Value(), 4u);

    auto label = Item(40, 19);
    auto content = Item(40, 19);
    auto fixed = Item(40, 19);
    fixed->mWidth = 40;
    auto defaultBinding = label->mView->UI_GetLayoutBinding();
    row.SetColumnItem(0, label);
    row.SetColumnItem(1, content);
    EXPECT_EQ(label->mView->UI_GetLayoutBinding(), defaultBinding);
    EXPECT_EQ(content->mView->UI_GetLayoutBinding().Value(), 4u);

    // Replacing an item takes the old view out of the row.
    row.SetColumnItem(1, fixed);
    EXPECT_EQ(fixed->mView->UI_GetLayoutBinding(), defaultBinding);
    EXPECT_EQ(content->mView->UI_GetParent(), nullptr);
    EXPECT_EQ(fixed->mView->UI_GetParent(), row.GetView().get());

    // A nested table in column 0 follows the row's width.
    auto nested = std::make_shared<LayoutItem>(Table());
    row.SetColumnItem(0, nested);
    EXPECT_EQ(nested->mView->UI_GetLayoutBinding().Value(), 4u);
    EXPECT_EQ(label->mView->UI_GetParent(), nullptr);
}

TEST_F(TableLayoutTest, NestedTablesTakeTheContentWidthAndReportTheirHeight)
{
    auto outer = Table(500);
    auto inner = Table();
    inner->InsertRow(1, Item(50, 30));
    outer->InsertTable(inner);
    outer->InsertRow(LabelledRow(60));

    // Inner: 10 + 30 + 10 = 50 high, in the whole content width (480), not
    // in the label column.
    EXPECT_EQ(outer->Layout(), 10.0f + 50.0f + 7.0f + 19.0f + 10.0f);
    EXPECT_EQ(inner->GetView()->UI_GetLocalRectF(true), (RectF{0, 0, 480, 50}));
    EXPECT_EQ(inner->GetRow(0)->GetView()->UI_GetLocalRectF(true), (RectF{10, 10, 460, 30}));

    // Collapsing the inner table shrinks the outer one on the next layout.
    inner->SetCollapsed(true);
    EXPECT_EQ(outer->Layout(), 10.0f + 0.0f + 7.0f + 19.0f + 10.0f);
    EXPECT_EQ(outer->GetRow(1)->GetView()->UI_GetLocalRectF(true).y, 17.0f);
}

TEST_F(TableLayoutTest, LabelWidthsAreMeasuredCappedAndShared)
{
    struct Case {
        float measured;
        float expected;
    };
    for (Case c : {Case{260, 220}, Case{80, 100}, Case{150, 150}, Case{220, 220}}) {
        auto table = Table();
        table->InsertRow(LabelledRow(c.measured));
        table->SetLabelWidth(5); // every pass starts again from 100
        table->UpdateLabelWidth(MeasureByViewWidth);
        EXPECT_EQ(table->GetLabelWidth(), c.expected) << c.measured;
    }

    auto table = Table();
    table->SetLabelWidth(170);
    table->UpdateLabelWidth({});
    EXPECT_EQ(table->GetLabelWidth(), 100.0f) << "an empty measurer resets only";

    // Mode 1 contributes its label width to the parent; mode 2 only adopts.
    for (int mode : {0, 1, 2}) {
        auto parent = Table();
        parent->InsertRow(LabelledRow(120));
        auto nested = Table();
        nested->SetLabelWidthMode(mode);
        nested->InsertRow(LabelledRow(150));
        parent->InsertTable(nested);
        auto small = Table();
        small->SetLabelWidthMode(mode);
        small->InsertRow(LabelledRow(60));
        parent->InsertTable(small);

        parent->UpdateLabelWidth(MeasureByViewWidth);
        EXPECT_EQ(parent->GetNestedLabelWidth(), 150.0f) << mode;
        EXPECT_EQ(parent->GetLabelWidth(), mode == 1 ? 150.0f : 120.0f) << mode;
        EXPECT_EQ(nested->GetLabelWidth(), 150.0f) << mode;
        EXPECT_EQ(small->GetLabelWidth(), mode == 0 ? 100.0f : parent->GetLabelWidth()) << mode;
    }

    // A table in the content column is measured on its own and never shares.
    auto parent = Table();
    auto row = LabelledRow(130);
    auto structTable = Table();
    structTable->SetLabelWidthMode(2);
    structTable->InsertRow(LabelledRow(90));
    row->SetColumnItem(1, std::make_shared<LayoutItem>(structTable));
    parent->InsertRow(row);
    structTable->SetLabelWidth(3);
    parent->UpdateLabelWidth(MeasureByViewWidth);
    EXPECT_EQ(parent->GetLabelWidth(), 130.0f);
    EXPECT_EQ(structTable->GetLabelWidth(), 100.0f);
}

TEST_F(TableLayoutTest, DelegateReceivesRowsAndContentSize)
{
    auto container = MakeView(350, 10);
    auto delegate = std::make_shared<RecordingDelegate>(container);
    auto table = Table(600);
    table->SetDelegate(delegate);
    table->InsertRow(LabelledRow(60, 30));

    EXPECT_EQ(container->UI_CountChildren(), 1);
    EXPECT_EQ(table->GetView()->UI_CountChildren(), 0);

    table->Layout();
    table->LayoutFixedWidth();
    ASSERT_EQ(delegate->mSizes.size(), 2u);
    EXPECT_EQ(delegate->mSizes[0], (PointF{350, 50}));
    EXPECT_EQ(delegate->mSizes[1], (PointF{400, 50}));
    // The container's width governs the rows.
    EXPECT_EQ(table->GetRow(0)->GetView()->UI_GetLocalRectF(true).width, 330.0f);

    // Without a delegate the fixed-width layout is the plain one.
    auto plain = Table(250);
    EXPECT_EQ(plain->LayoutFixedWidth(), 20.0f);
    EXPECT_EQ(plain->GetView()->UI_GetLocalRectF(false).width, 250.0f);
}

TEST_F(TableLayoutTest, NullArgumentsAssertAndInsertNothing)
{
    auto table = Table();
    table->InsertRow(std::shared_ptr<RowItem>());
    ExpectOneAssert("kivmetadataui::layout::TableLayout::InsertRow", "inRowItem");
    table->InsertTable(nullptr);
    ExpectOneAssert("kivmetadataui::layout::TableLayout::InsertTable", "inTableLayout");
    RowItem row;
    row.SetColumnItem(0, nullptr);
    ExpectOneAssert("kivmetadataui::layout::RowItem::SetColumnItem", "inItem");
    EXPECT_EQ(table->CountRows(), 0);
    EXPECT_EQ(table->GetView()->UI_CountChildren(), 0);
    EXPECT_EQ(row.GetView()->UI_CountChildren(), 0);

    EXPECT_THROW(LayoutItem{IntrusivePtr<UI_SubView>()}, kivcore::config::NullPtrException);
    ExpectOneAssert("kivmetadataui::layout::LayoutItem::LayoutItem", "inView");
    EXPECT_THROW(LayoutItem{std::shared_ptr<TableLayout>()}, kivcore::config::NullPtrException);
    ExpectOneAssert("kivmetadataui::layout::LayoutItem::LayoutItem", "inLayout");
    EXPECT_THROW(LayoutItem{std::shared_ptr<kivmetadataui::Control>()}, kivcore::config::NullPtrException);
    ExpectOneAssert("kivmetadataui::layout::LayoutItem::LayoutItem", "inControlPtr");

    TableLayout viewless{IntrusivePtr<UI_SubView>()};
    ExpectOneAssert("kivmetadataui::layout::TableLayout::TableLayout", "inView");
}

TEST_F(TableLayoutTest, BadIndicesRaiseInvalidSubscript)
{
    auto expectSubscript = [](auto &&inCall) {
        try {
            inCall();
            ADD_FAILURE() << "no exception";
        } catch (std::out_of_range const &e) {
            EXPECT_STREQ(e.what(), "invalid vector subscript");
        }
    };
    auto table = Table();
    table->InsertRow(LabelledRow(50));
    expectSubscript([&] { table->GetRow(1); });
    expectSubscript([&] { table->GetRow(-1); });
    expectSubscript([&] { table->GetRow(0)->GetColumnItem(2); });
    expectSubscript([&] { table->GetRow(0)->SetColumnItem(2, Item(1, 1)); });

    // A row that lost its slots cannot be laid out or measured.
    table->GetRow(0)->GetColumns().resize(1);
    expectSubscript([&] { table->Layout(); });
    expectSubscript([&] { table->UpdateLabelWidth(MeasureByViewWidth); });
}

} // namespace

#include <kivmetadataui/TableLayout.h>

#include <kivmetadataui/Control.h>

#include <kivcore/Assert.h>
#include <kivcore/Exceptions.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_SubView.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace kivmetadataui::layout {

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivui::UI_SubView;

namespace {

constexpr char kUnit[] = "layout/src/TableLayout";

[[noreturn]] void ThrowInvalidSubscript()
{
    throw std::out_of_range("invalid vector subscript");
}

template <typename T> T const &At(std::vector<T> const &inVector, std::int32_t inIndex)
{
    if (inIndex < 0 || static_cast<std::size_t>(inIndex) >= inVector.size()) ThrowInvalidSubscript();
    return inVector[static_cast<std::size_t>(inIndex)];
}

UI_SubView &Require(IntrusivePtr<UI_SubView> const &inView)
{
    if (!inView) kivcore::config::DoThrowNullPtrException("kivui::UI_SubView");
    return *inView;
}

// Sets a frame without letting the node re-lay its children in response.
void SetRectQuietly(UI_SubView &inView, RectF const &inRect)
{
    bool const layouts = inView.UI_GetLayoutsChildren();
    inView.UI_SetLayoutsChildren(false);
    inView.UI_SetLocalRectF(inRect);
    inView.UI_SetLayoutsChildren(layouts);
}

} // namespace

// ---------------------------------------------------------------------------
// LayoutItem

LayoutItem::LayoutItem(IntrusivePtr<UI_SubView> inView)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::LayoutItem::LayoutItem", inView);
    mView = std::move(inView);
    Require(mView);
}

LayoutItem::LayoutItem(std::shared_ptr<Control> const &inControlPtr) : mControl(inControlPtr)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::LayoutItem::LayoutItem", inControlPtr);
    if (inControlPtr) mView = inControlPtr->GetView();
    Require(mView);
}

LayoutItem::LayoutItem(std::shared_ptr<TableLayout> const &inLayout) : mKind(kItemKind_Table), mTable(inLayout)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::LayoutItem::LayoutItem", inLayout);
    if (inLayout) {
        mView = inLayout->GetView();
        // The nested table decides its own height inside the proposed cell.
        mLayoutFunction = [table = inLayout](UI_SubView &inView, RectF &ioRect) {
            SetRectQuietly(inView, ioRect);
            ioRect.height = table->Layout();
        };
    }
    Require(mView);
}

LayoutItem::~LayoutItem() = default;

// ---------------------------------------------------------------------------
// RowItem

struct RowItem::Private {
    IntrusivePtr<UI_SubView> mView{new UI_SubView};
    std::vector<std::shared_ptr<LayoutItem>> mColumns = std::vector<std::shared_ptr<LayoutItem>>(2);
    float mSpaceBefore = 0.0f;
    float mSpaceAfter = 0.0f;
};

RowItem::RowItem() : d(std::make_unique<Private>())
{
    d->mView->UI_SetLocalRectF(RectF{0.0f, 0.0f, 0.0f, TableLayout::kMinRowHeight});
    d->mView->UI_SetLayoutsChildren(true);
    d->mView->UI_SetLayoutBinding(kivui::LayoutBinding(kivui::kBindWidth));
    d->mView->UI_Show(true);
}

RowItem::~RowItem() = default;

IntrusivePtr<UI_SubView> const &RowItem::GetView() const
{
    return d->mView;
}

std::vector<std::shared_ptr<LayoutItem>> &RowItem::GetColumns()
{
    return d->mColumns;
}

std::vector<std::shared_ptr<LayoutItem>> const &RowItem::GetColumns() const
{
    return d->mColumns;
}

float RowItem::GetSpaceBefore() const
{
    return d->mSpaceBefore;
}

void RowItem::SetSpaceBefore(float inSpace)
{
    d->mSpaceBefore = inSpace;
}

float RowItem::GetSpaceAfter() const
{
    return d->mSpaceAfter;
}

void RowItem::SetSpaceAfter(float inSpace)
{
    d->mSpaceAfter = inSpace;
}

void RowItem::SetColumnItem(std::int32_t inColumn, std::shared_ptr<LayoutItem> inItem)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::RowItem::SetColumnItem", inItem);
    if (!inItem) return;
    if (inColumn < 0 || static_cast<std::size_t>(inColumn) >= d->mColumns.size()) ThrowInvalidSubscript();

    auto &slot = d->mColumns[static_cast<std::size_t>(inColumn)];
    if (slot && slot->mView) d->mView->ChildRemove(slot->mView.get());
    slot = inItem;

    UI_SubView &view = Require(inItem->mView);
    bool const isLabel = inColumn == 0 && inItem->mKind == LayoutItem::kItemKind_View;
    if (inItem->mWidth == 0.0f && !isLabel) view.UI_SetLayoutBinding(kivui::LayoutBinding(kivui::kBindWidth));

    RectF rect = view.UI_GetLocalRectF(false);
    if (rect.height == 0.0f) {
        rect.height = TableLayout::kMinRowHeight;
        view.UI_SetLocalRectF(rect);
    } else if (rect.height < TableLayout::kMinRowHeight) {
        // Centred in a minimum-height row, the odd unit going below.
        rect.y = std::floor((TableLayout::kMinRowHeight - rect.height) * 0.5f);
        view.UI_SetLocalRectF(rect);
    }

    view.UI_Show(true);
    d->mView->ChildPushBack(inItem->mView);
}

std::shared_ptr<LayoutItem> RowItem::GetColumnItem(std::int32_t inColumn) const
{
    return At(d->mColumns, inColumn);
}

// ---------------------------------------------------------------------------
// TableLayoutDelegate

TableLayoutDelegate::~TableLayoutDelegate() = default;

// ---------------------------------------------------------------------------
// TableLayout

struct TableLayout::Private {
    explicit Private(TableLayout &inOwner) : q(inOwner) {}

    float LayoutWithWidth(bool inFixedWidth);
    float MeasureHeight();
    float LayoutRow(RowItem &inRow, float inTop, float inContentWidth);
    float MeasureLabelWidth(Measurer const &inMeasurer);
    void ShareLabelWidth(float inWidth);

    TableLayout &q;
    IntrusivePtr<UI_SubView> mView;
    std::vector<std::shared_ptr<RowItem>> mRows;
    float mLabelWidth = kDefaultLabelWidth;
    float mNestedLabelWidth = 0.0f;
    std::int32_t mLabelWidthMode = 0;
    float mLeftMargin = kMargin;
    float mRightMargin = kMargin;
    float mTopMargin = kMargin;
    float mBottomMargin = kMargin;
    std::shared_ptr<TableLayoutDelegate> mDelegate;
    bool mCollapsed = false;
};

TableLayout::TableLayout(IntrusivePtr<UI_SubView> inView) : d(std::make_unique<Private>(*this))
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::TableLayout::TableLayout", inView);
    d->mView = std::move(inView);
}

TableLayout::~TableLayout() = default;

IntrusivePtr<UI_SubView> TableLayout::GetContainerView()
{
    if (d->mDelegate) return d->mDelegate->GetContainerView(*this);
    return d->mView;
}

std::int32_t TableLayout::CountRows() const
{
    return static_cast<std::int32_t>(d->mRows.size());
}

std::vector<std::shared_ptr<RowItem>> const &TableLayout::GetRows() const
{
    return d->mRows;
}

IntrusivePtr<UI_SubView> const &TableLayout::GetView() const
{
    return d->mView;
}

float TableLayout::GetLabelWidth() const
{
    return d->mLabelWidth;
}

void TableLayout::SetLabelWidth(float inWidth)
{
    d->mLabelWidth = inWidth;
}

float TableLayout::GetNestedLabelWidth() const
{
    return d->mNestedLabelWidth;
}

std::int32_t TableLayout::GetLabelWidthMode() const
{
    return d->mLabelWidthMode;
}

void TableLayout::SetLabelWidthMode(std::int32_t inMode)
{
    d->mLabelWidthMode = inMode;
}

float TableLayout::GetLeftMargin() const
{
    return d->mLeftMargin;
}

float TableLayout::GetRightMargin() const
{
    return d->mRightMargin;
}

float TableLayout::GetTopMargin() const
{
    return d->mTopMargin;
}

float TableLayout::GetBottomMargin() const
{
    return d->mBottomMargin;
}

std::shared_ptr<TableLayoutDelegate> const &TableLayout::GetDelegate() const
{
    return d->mDelegate;
}

void TableLayout::SetDelegate(std::shared_ptr<TableLayoutDelegate> inDelegate)
{
    d->mDelegate = std::move(inDelegate);
}

bool TableLayout::IsCollapsed() const
{
    return d->mCollapsed;
}

void TableLayout::SetCollapsed(bool inCollapsed)
{
    d->mCollapsed = inCollapsed;
}

void TableLayout::InsertRow(std::shared_ptr<RowItem> inRowItem)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::TableLayout::InsertRow", inRowItem);
    if (!inRowItem) return;
    d->mRows.push_back(inRowItem);
    if (auto container = GetContainerView()) container->ChildPushBack(inRowItem->GetView());
}

void TableLayout::InsertRow(std::int32_t inColumn, std::shared_ptr<LayoutItem> inItem)
{
    auto row = std::make_shared<RowItem>();
    row->SetColumnItem(inColumn, std::move(inItem));
    InsertRow(std::move(row));
}

void TableLayout::InsertTable(std::shared_ptr<TableLayout> inTableLayout)
{
    KIV_ASSERT(kUnit, "kivmetadataui::layout::TableLayout::InsertTable", inTableLayout);
    if (!inTableLayout) return;
    InsertRow(0, std::make_shared<LayoutItem>(inTableLayout));
}

std::shared_ptr<RowItem> TableLayout::GetRow(std::int32_t inIndex) const
{
    return At(d->mRows, inIndex);
}

void TableLayout::SetMargins(kivcore::Flags<unsigned char> inMask)
{
    auto margin = [&](unsigned char inBit) { return inMask.IsSet(inBit) ? kMargin : 0.0f; };
    d->mLeftMargin = margin(kMarginLeft);
    d->mTopMargin = margin(kMarginTop);
    d->mRightMargin = margin(kMarginRight);
    d->mBottomMargin = margin(kMarginBottom);
}

float TableLayout::Private::LayoutRow(RowItem &inRow, float inTop, float inContentWidth)
{
    UI_SubView &rowView = Require(inRow.GetView());
    float const rowHeight = rowView.UI_GetLocalRectF(false).height;
    auto const &columns = inRow.GetColumns();

    auto placeCell = [&](LayoutItem &inItem, RectF inCell) {
        UI_SubView &view = Require(inItem.mView);
        if (inItem.mLayoutFunction) {
            inItem.mLayoutFunction(view, inCell);
        } else {
            RectF const own = view.UI_GetLocalRectF(true);
            inCell.y = own.y;
            inCell.height = own.height;
        }
        view.UI_SetLocalRectF(inCell);
        return inCell.y + inCell.height;
    };

    float extent0 = 0.0f;
    float extent1 = 0.0f;
    if (auto const &label = At(columns, 0)) {
        float width = label->mWidth;
        if (width == 0.0f) width = label->mKind == LayoutItem::kItemKind_Table ? inContentWidth : mLabelWidth;
        extent0 = placeCell(*label, RectF{0.0f, 0.0f, width, rowHeight});
        if (label->mLabelWidthFunction) label->mLabelWidthFunction(0, mLabelWidth);
    }
    if (auto const &content = At(columns, 1)) {
        float const x = mLabelWidth + kLabelContentGap;
        float const width = content->mWidth != 0.0f ? content->mWidth : inContentWidth - x;
        extent1 = placeCell(*content, RectF{x, 0.0f, width, rowHeight});
    }

    float const height = std::max({0.0f, extent0, extent1});
    SetRectQuietly(rowView, RectF{mLeftMargin, inTop, inContentWidth, height});
    return height;
}

float TableLayout::Private::MeasureHeight()
{
    if (mCollapsed) return 0.0f;

    auto const container = q.GetContainerView();
    float const contentWidth = container ? container->UI_GetLocalRectF(false).width - mLeftMargin - mRightMargin : 0.0f;

    float y = mTopMargin;
    for (std::size_t i = 0; i < mRows.size(); ++i) {
        RowItem &row = *mRows[i];
        if (i != 0) y += row.GetSpaceBefore();
        float const height = LayoutRow(row, y, contentWidth);
        y += row.GetSpaceAfter() + height;
        // Exactly the sentinel: rows whose borders must abut get no gap.
        if (i + 1 < mRows.size() && row.GetSpaceAfter() != RowItem::kAbutNextRow) y += kRowGap;
    }
    return y + mBottomMargin;
}

float TableLayout::Private::LayoutWithWidth(bool inFixedWidth)
{
    UI_SubView &view = Require(mView);
    auto const container = q.GetContainerView();
    float const width = container ? container->UI_GetLocalRectF(false).width : 0.0f;
    float const height = MeasureHeight();

    bool const layouts = view.UI_GetLayoutsChildren();
    view.UI_SetLayoutsChildren(false);
    if (!mDelegate) {
        RectF const own = view.UI_GetLocalRectF(true);
        view.UI_SetLocalRectF(RectF{own.x, own.y, width, height});
    } else {
        mDelegate->SetContentSize(q, kivcore::PointF{inFixedWidth ? kFixedContentWidth : width, height});
    }
    view.UI_SetLayoutsChildren(layouts);
    return view.UI_GetLocalRectF(false).height;
}

float TableLayout::Layout()
{
    return d->LayoutWithWidth(false);
}

float TableLayout::LayoutFixedWidth()
{
    return d->LayoutWithWidth(true);
}

float TableLayout::Private::MeasureLabelWidth(Measurer const &inMeasurer)
{
    mLabelWidth = kDefaultLabelWidth;
    mNestedLabelWidth = 0.0f;
    if (!inMeasurer || mRows.empty()) return mLabelWidth;

    for (auto const &row : mRows) {
        auto const &columns = row->GetColumns();
        float width = 0.0f;
        if (auto const &label = At(columns, 0)) {
            if (label->mKind == LayoutItem::kItemKind_Table && label->mTable) {
                float const nested = label->mTable->d->MeasureLabelWidth(inMeasurer);
                mNestedLabelWidth = std::max(mNestedLabelWidth, nested);
                width = label->mTable->d->mLabelWidthMode == 1 ? nested : 0.0f;
            } else {
                width = inMeasurer(*label);
            }
        }
        if (mLabelWidth < width && mLabelWidth < kMaxLabelWidth) mLabelWidth = std::min(kMaxLabelWidth, width);

        auto const &content = At(columns, 1);
        if (content && content->mKind == LayoutItem::kItemKind_Table && content->mTable)
            content->mTable->d->MeasureLabelWidth(inMeasurer);
    }
    return mLabelWidth;
}

void TableLayout::Private::ShareLabelWidth(float inWidth)
{
    // Sharing only ever widens a label column.
    if (mLabelWidthMode != 0 && mLabelWidth < inWidth && mLabelWidth < kMaxLabelWidth)
        mLabelWidth = std::min(kMaxLabelWidth, inWidth);
    for (auto const &row : mRows) {
        auto const &label = At(row->GetColumns(), 0);
        if (label && label->mKind == LayoutItem::kItemKind_Table && label->mTable)
            label->mTable->d->ShareLabelWidth(inWidth);
    }
}

void TableLayout::UpdateLabelWidth(Measurer const &inMeasurer)
{
    d->ShareLabelWidth(d->MeasureLabelWidth(inMeasurer));
}

} // namespace kivmetadataui::layout

#include <kivui/UI_MultiColumnTree.h>

#include "UI_MultiColumnTree_p.h"

#include <kivcore/Assert.h>

#include <QHeaderView>
#include <QItemSelectionModel>

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace kivui {

using detail::Row;
using detail::ToQString;
using kivcore::PointF;
using kivcore::RectF;
using RowPtr = UI_MultiColumnTree::RowPtr;

namespace {

constexpr char const *kUnit = "kivui/views/UI_MultiColumnTree";

// Cell views of this many rows beyond the visible ones stay placed, so that
// scrolling back and forth by a little does not rebuild them.
constexpr std::size_t kPlacedSlack = 32;

void CollectOpened(Row const &inParent, std::vector<RowPtr> &ioRows)
{
    for (int i = 0; i < inParent.CountChildRows(); ++i) {
        RowPtr child = inParent.GetChildRow(i);
        ioRows.push_back(child);
        if (child->IsOpened()) CollectOpened(*child, ioRows);
    }
}

// Position of a row in display order, as the path of indexes from the top.
std::vector<int> DisplayKey(Row const *inRow)
{
    std::vector<int> key;
    for (Row const *r = inRow; r && r->GetTree(); r = r->GetParentRow().get())
        key.push_back(r->GetIndexInParent());
    std::reverse(key.begin(), key.end());
    return key;
}

} // namespace

// ---------------------------------------------------------------------------
// Row

UI_MultiColumnTreeRow::UI_MultiColumnTreeRow() = default;
UI_MultiColumnTreeRow::~UI_MultiColumnTreeRow() = default;

UI_MultiColumnTreeRow::IntrusivePtr UI_MultiColumnTreeRow::GetParentRow() const
{
    // The hidden root has index -1 and is never handed out.
    if (!mParent || mParent->mIndexInParent < 0) return {};
    return IntrusivePtr(mParent);
}

UI_MultiColumnTreeRow::IntrusivePtr UI_MultiColumnTreeRow::GetChildRow(int inIndex) const
{
    if (inIndex < 0 || inIndex >= CountChildRows()) return {};
    return mChildren[static_cast<std::size_t>(inIndex)];
}

int UI_MultiColumnTreeRow::GetDepth() const
{
    int depth = 0;
    for (auto p = GetParentRow(); p; p = p->GetParentRow())
        ++depth;
    return depth;
}

void UI_MultiColumnTreeRow::SetCellView(kivcore::utility::IntrusivePtr<UI_SubView> inView)
{
    if (inView == mCellView) return;
    auto old = std::move(mCellView);
    mCellView = std::move(inView);
    if (mTree) mTree->d->CellViewChanged(*this, old);
}

kivcore::utility::IntrusivePtr<UI_SubView> UI_MultiColumnTreeRow::GetCellView() const
{
    return mCellView;
}

void UI_MultiColumnTreeRow::SetOpened(bool inOpened)
{
    if (mTree)
        mTree->OpenRow(IntrusivePtr(this), inOpened);
    else
        mOpened = inOpened;
}

void UI_MultiColumnTreeRow::SetHeight(float inHeight)
{
    inHeight = std::max(0.0f, inHeight);
    if (inHeight == mHeight) return;
    float const old = mHeight;
    mHeight = inHeight;
    if (mTree) mTree->d->HeightChanged(*this, old);
}

float UI_MultiColumnTreeRow::GetEffectiveHeight() const
{
    if (mHeight > 0.0f) return mHeight;
    return mTree ? mTree->GetDefaultRowHeight() : UI_MultiColumnTree::kDefaultRowHeight;
}

void UI_MultiColumnTreeRow::SetText(int inColumn, std::u16string inText)
{
    if (inColumn < 0) return;
    auto const column = static_cast<std::size_t>(inColumn);
    if (mTexts.size() <= column) mTexts.resize(column + 1);
    mTexts[column] = std::move(inText);
    if (mTree) mTree->d->model->RowChanged(*this);
}

std::u16string UI_MultiColumnTreeRow::GetText(int inColumn) const
{
    if (inColumn < 0 || static_cast<std::size_t>(inColumn) >= mTexts.size()) return {};
    return mTexts[static_cast<std::size_t>(inColumn)];
}

// ---------------------------------------------------------------------------
// Private

UI_MultiColumnTree::Private::Private(UI_MultiColumnTree &inTree, detail::MultiColumnTreeView *inView)
    : tree(inTree), root(new Row), view(inView)
{
    root->mTree = &inTree;
    root->mIndexInParent = -1;
    root->mOpened = true;
    model = new detail::MultiColumnTreeModel(inTree, *root, view);
    delegate = new detail::MultiColumnTreeDelegate(inTree, *model, view);
    view->setModel(model);
    view->setItemDelegate(delegate);
    parking = new QWidget(view);
    parking->setObjectName(QStringLiteral("kivui_parkedCells"));
    parking->hide();
}

void UI_MultiColumnTree::Private::Sync()
{
    if (syncing) return;
    syncing = true;
    std::vector<Row *> const rows = view->CollectVisibleRows();
    std::vector<RowPtr> now(rows.begin(), rows.end());
    std::unordered_set<Row const *> const nowSet(rows.begin(), rows.end());
    for (auto const &r : visible) {
        if (!nowSet.count(r.get())) r->mVisible = false;
    }
    visible = now;

    if (!quiet) {
        for (auto const &r : now) {
            if (r->mTree != &tree || r->mVisible) continue;
            r->mVisible = true;
            if (visibilityFxn) visibilityFxn(r);
            if (quiet) break; // the callback silenced the tree
        }
    }
    for (auto const &r : now) {
        if (r->mTree == &tree && r->mCellView && !r->mHosted) Place(*r);
    }

    if (placed.size() > now.size() + kPlacedSlack) {
        int const height = view->viewport()->height();
        std::vector<Row *> drop;
        for (Row *r : placed) {
            if (nowSet.count(r)) continue;
            QRect const rect = view->visualRect(model->IndexForRow(r));
            if (!rect.isValid() || rect.bottom() < -height || rect.top() > 2 * height) drop.push_back(r);
        }
        for (Row *r : drop)
            Unplace(*r);
    }
    syncing = false;
}

void UI_MultiColumnTree::Private::Place(Row &inRow)
{
    QWidget *cell = inRow.mCellView ? inRow.mCellView->UI_GetWidget() : nullptr;
    QModelIndex const index = model->IndexForRow(&inRow);
    if (!cell || !index.isValid()) return;
    auto *host = new detail::CellHost(inRow, nullptr);
    cell->setParent(host);
    cell->move(0, 0);
    cell->show();
    view->PlaceIndexWidget(index, host);
    QStyleOptionViewItem option;
    option.rect = view->visualRect(index);
    option.widget = view;
    if (option.rect.isValid()) delegate->updateEditorGeometry(host, option, index);
    inRow.mHosted = true;
    placed.push_back(&inRow);
}

void UI_MultiColumnTree::Private::Unplace(Row &inRow)
{
    if (!inRow.mHosted) return;
    inRow.mHosted = false;
    placed.erase(std::remove(placed.begin(), placed.end(), &inRow), placed.end());
    // Take the cell out before the view deletes its host.
    if (inRow.mCellView) {
        if (QWidget *cell = inRow.mCellView->UI_GetWidget()) {
            cell->hide();
            cell->setParent(parking);
        }
    }
    QModelIndex const index = model->IndexForRow(&inRow);
    if (index.isValid()) view->setIndexWidget(index, nullptr);
}

void UI_MultiColumnTree::Private::Forget(Row &inRow, bool inDetachCells, std::vector<UI_Node *> *outCells)
{
    for (auto const &child : inRow.mChildren)
        Forget(*child, inDetachCells, outCells);
    Unplace(inRow);
    if (inDetachCells && inRow.mCellView) {
        if (outCells)
            outCells->push_back(inRow.mCellView.get());
        else
            tree.ChildRemove(inRow.mCellView.get());
    }
    if (inRow.mHeight > 0.0f) --customHeightRows;
    inRow.mVisible = false;
    inRow.mTree = nullptr;
}

void UI_MultiColumnTree::Private::CellViewChanged(Row &inRow, kivcore::utility::IntrusivePtr<UI_SubView> const &inOld)
{
    if (inOld) {
        if (inRow.mHosted) Unplace(inRow);
        if (inOld->UI_GetParent() == &tree) tree.ChildRemove(inOld.get());
    }
    if (!inRow.mCellView) {
        model->RowChanged(inRow);
        return;
    }
    tree.ChildPushBack(inRow.mCellView);
    if (QWidget *cell = inRow.mCellView->UI_GetWidget()) {
        cell->hide();
        cell->setParent(parking);
    }
    bool const shown = std::any_of(visible.begin(), visible.end(), [&](RowPtr const &r) { return r.get() == &inRow; });
    if (shown)
        Place(inRow);
    else
        model->RowChanged(inRow);
}

void UI_MultiColumnTree::Private::HeightChanged(Row &inRow, float inOld)
{
    if (inOld <= 0.0f && inRow.mHeight > 0.0f) ++customHeightRows;
    if (inOld > 0.0f && inRow.mHeight <= 0.0f) --customHeightRows;
    view->setUniformRowHeights(customHeightRows == 0);
    model->RowChanged(inRow);
    view->ScheduleLayout();
}

void UI_MultiColumnTree::Private::OnExpansion(QModelIndex const &inIndex, bool inOpened)
{
    Row *row = model->RowFromIndex(inIndex);
    if (row == root.get() || row->mOpened == inOpened) return;
    row->mOpened = inOpened;
    if (!quiet && disclosureFxn) disclosureFxn(RowPtr(row), inOpened);
}

// ---------------------------------------------------------------------------
// Tree

UI_MultiColumnTree::UI_MultiColumnTree()
    : UI_SubView(new detail::MultiColumnTreeView),
      d(std::make_unique<Private>(*this, static_cast<detail::MultiColumnTreeView *>(UI_GetWidget())))
{
    d->view->SetTree(this);
    QObject::connect(d->view, &QTreeView::expanded, d->model,
                     [this](QModelIndex const &index) { d->OnExpansion(index, true); });
    QObject::connect(d->view, &QTreeView::collapsed, d->model,
                     [this](QModelIndex const &index) { d->OnExpansion(index, false); });
    QObject::connect(d->view->selectionModel(), &QItemSelectionModel::selectionChanged, d->model, [this] {
        if (!d->quiet && d->selectionFxn) d->selectionFxn();
    });
}

UI_MultiColumnTree::~UI_MultiColumnTree()
{
    d->view->SetTree(nullptr);
    // Rows may outlive the tree; they keep their cell views, detached.
    for (auto const &row : d->root->mChildren) {
        d->Forget(*row, true);
        row->mParent = nullptr;
    }
    d->root->mChildren.clear();
    d->view->setModel(nullptr);
    delete d->model; // its connections go with it
}

QTreeView *UI_MultiColumnTree::GetTreeView() const
{
    return d->view;
}

void UI_MultiColumnTree::SetColumnCount(int inCount)
{
    d->model->SetColumnCount(std::max(1, inCount));
}
int UI_MultiColumnTree::GetColumnCount() const
{
    return d->model->columnCount();
}

void UI_MultiColumnTree::SetColumnHeader(int inColumn, std::u16string inText)
{
    d->model->SetHeader(inColumn, ToQString(inText));
}

std::u16string UI_MultiColumnTree::GetColumnHeader(int inColumn) const
{
    return d->model->Header(inColumn).toStdU16String();
}

void UI_MultiColumnTree::SetShowHeader(bool inShow)
{
    d->view->setHeaderHidden(!inShow);
}
bool UI_MultiColumnTree::IsHeaderShown() const
{
    return !d->view->isHeaderHidden();
}
void UI_MultiColumnTree::SetGridLines(bool inGridLines)
{
    d->view->SetGridLines(inGridLines);
}
bool UI_MultiColumnTree::HasGridLines() const
{
    return d->view->HasGridLines();
}
void UI_MultiColumnTree::SetSortIndicatorShown(bool inShown)
{
    d->view->header()->setSortIndicatorShown(inShown);
}
bool UI_MultiColumnTree::IsSortIndicatorShown() const
{
    return d->view->header()->isSortIndicatorShown();
}
void UI_MultiColumnTree::SetColumnsMovable(bool inMovable)
{
    d->view->header()->setSectionsMovable(inMovable);
}
bool UI_MultiColumnTree::AreColumnsMovable() const
{
    return d->view->header()->sectionsMovable();
}

void UI_MultiColumnTree::SetColumnsAutoResize(bool inAutoResize)
{
    d->autoResize = inAutoResize;
    d->view->header()->setStretchLastSection(inAutoResize);
}

bool UI_MultiColumnTree::AreColumnsAutoResize() const
{
    return d->autoResize;
}

void UI_MultiColumnTree::SetColumnWidth(int inColumn, float inWidth)
{
    if (inColumn < 0 || inColumn >= GetColumnCount()) return;
    d->view->setColumnWidth(inColumn, std::max(0, static_cast<int>(std::lround(inWidth))));
}

float UI_MultiColumnTree::GetColumnWidth(int inColumn) const
{
    if (inColumn < 0 || inColumn >= GetColumnCount()) return 0.0f;
    return static_cast<float>(d->view->columnWidth(inColumn));
}

void UI_MultiColumnTree::SetRootIsDecorated(bool inDecorated)
{
    d->view->ScheduleLayout();
    d->view->setRootIsDecorated(inDecorated);
}

void UI_MultiColumnTree::SetDefaultRowHeight(float inHeight)
{
    inHeight = std::max(1.0f, inHeight);
    if (inHeight == d->defaultRowHeight) return;
    d->defaultRowHeight = inHeight;
    d->view->ScheduleLayout();
}

float UI_MultiColumnTree::GetDefaultRowHeight() const
{
    return d->defaultRowHeight;
}

RowPtr UI_MultiColumnTree::AppendRow(RowPtr const &inParent)
{
    Row const *parent = inParent ? inParent.get() : d->root.get();
    return InsertRow(inParent, parent->CountChildRows());
}

RowPtr UI_MultiColumnTree::InsertRow(RowPtr const &inParent, int inIndex)
{
    KIV_ASSERT(kUnit, "kivui::UI_MultiColumnTree::InsertRow", !inParent || inParent->GetTree() == this);
    if (inParent && inParent->GetTree() != this) return {};
    Row *parent = inParent ? inParent.get() : d->root.get();
    inIndex = std::clamp(inIndex, 0, parent->CountChildRows());
    RowPtr row(new Row);
    d->model->Insert(*parent, inIndex, row);
    if (parent != d->root.get() && parent->mOpened) {
        // The view forgets the expansion of a row that had no children.
        QModelIndex const index = d->model->IndexForRow(parent);
        if (!d->view->isExpanded(index)) d->view->setExpanded(index, true);
    }
    return row;
}

std::vector<RowPtr> UI_MultiColumnTree::AppendRows(RowPtr const &inParent, int inCount)
{
    KIV_ASSERT(kUnit, "kivui::UI_MultiColumnTree::AppendRows", !inParent || inParent->GetTree() == this);
    if ((inParent && inParent->GetTree() != this) || inCount <= 0) return {};
    Row *parent = inParent ? inParent.get() : d->root.get();
    std::vector<RowPtr> rows;
    rows.reserve(static_cast<std::size_t>(inCount));
    for (int i = 0; i < inCount; ++i)
        rows.emplace_back(new Row);
    d->model->Append(*parent, rows);
    if (parent != d->root.get() && parent->mOpened) {
        QModelIndex const index = d->model->IndexForRow(parent);
        if (!d->view->isExpanded(index)) d->view->setExpanded(index, true);
    }
    return rows;
}

void UI_MultiColumnTree::RemoveRow(RowPtr const &inRow)
{
    KIV_ASSERT(kUnit, "kivui::UI_MultiColumnTree::RemoveRow", inRow && inRow->GetTree() == this);
    if (!inRow || inRow->GetTree() != this) return;
    RowPtr keep = inRow;
    d->Forget(*inRow, true);
    d->model->Remove(*inRow);
    d->view->setUniformRowHeights(d->customHeightRows == 0);
    std::erase_if(d->visible, [this](RowPtr const &r) { return r->mTree != this; });
    d->view->RequestSync();
}

void UI_MultiColumnTree::DeleteAllRows()
{
    // The cells leave together once the rows are gone, so that those of rows
    // nobody holds any more go with them instead of each being taken out of
    // the window.
    std::vector<UI_Node *> cells;
    for (auto const &row : d->root->mChildren)
        d->Forget(*row, true, &cells);
    d->model->RemoveAll();
    d->customHeightRows = 0;
    d->view->setUniformRowHeights(true);
    d->visible.clear();
    d->placed.clear();
    ChildrenRemove(cells);
}

int UI_MultiColumnTree::CountRows() const
{
    return d->root->CountChildRows();
}
RowPtr UI_MultiColumnTree::GetRow(int inIndex) const
{
    return d->root->GetChildRow(inIndex);
}

void UI_MultiColumnTree::OpenRow(RowPtr const &inRow, bool inOpen)
{
    if (!inRow || inRow->GetTree() != this) return;
    QModelIndex const index = d->model->IndexForRow(inRow.get());
    bool const changed = inRow->mOpened != inOpen;
    inRow->mOpened = inOpen;
    if (d->view->isExpanded(index) != inOpen) d->view->setExpanded(index, inOpen);
    if (changed && !d->quiet && d->disclosureFxn) d->disclosureFxn(inRow, inOpen);
}

std::vector<RowPtr> UI_MultiColumnTree::GetOpenedRows() const
{
    std::vector<RowPtr> rows;
    CollectOpened(*d->root, rows);
    return rows;
}

float UI_MultiColumnTree::GetFullOpenedRowsHeight() const
{
    float height = 0.0f;
    for (auto const &row : GetOpenedRows())
        height += row->GetEffectiveHeight();
    return height;
}

void UI_MultiColumnTree::SortTree(RowLess const &inLess)
{
    if (!inLess) return;
    d->model->Sort(inLess);
    d->view->RequestSync();
}

void UI_MultiColumnTree::ScrollRowIntoView(RowPtr const &inRow)
{
    if (!inRow || inRow->GetTree() != this) return;
    d->view->scrollTo(d->model->IndexForRow(inRow.get()), QAbstractItemView::EnsureVisible);
    d->Sync();
}

RectF UI_MultiColumnTree::GetRowRect(RowPtr const &inRow) const
{
    if (!inRow || inRow->GetTree() != this) return {};
    d->view->FlushLayout();
    QRect r = d->view->visualRect(d->model->IndexForRow(inRow.get()));
    if (!r.isValid()) return {};
    r.setRight(std::max(r.left(), d->view->ColumnsRight()));
    QPoint const topLeft = d->view->viewport()->mapTo(d->view, r.topLeft());
    return RectF{float(topLeft.x()), float(topLeft.y()), float(r.width()), float(r.height())};
}

RowPtr UI_MultiColumnTree::GetRowAtPoint(PointF const &inPoint) const
{
    QPoint const p =
        d->view->viewport()->mapFrom(d->view, QPoint(int(std::floor(inPoint.x)), int(std::floor(inPoint.y))));
    QModelIndex const index = d->view->indexAt(p);
    if (!index.isValid()) return {};
    return RowPtr(d->model->RowFromIndex(index));
}

void UI_MultiColumnTree::Layout()
{
    d->view->doItemsLayout();
    d->Sync();
}

void UI_MultiColumnTree::SetSelectionMode(SelectionMode inMode)
{
    switch (inMode) {
    case SelectionMode::kNone:
        d->view->setSelectionMode(QAbstractItemView::NoSelection);
        break;
    case SelectionMode::kSingle:
        d->view->setSelectionMode(QAbstractItemView::SingleSelection);
        break;
    case SelectionMode::kMultiple:
        d->view->setSelectionMode(QAbstractItemView::ExtendedSelection);
        break;
    }
}

UI_MultiColumnTree::SelectionMode UI_MultiColumnTree::GetSelectionMode() const
{
    switch (d->view->selectionMode()) {
    case QAbstractItemView::NoSelection:
        return SelectionMode::kNone;
    case QAbstractItemView::SingleSelection:
        return SelectionMode::kSingle;
    default:
        return SelectionMode::kMultiple;
    }
}

void UI_MultiColumnTree::SelectRow(RowPtr const &inRow, bool inSelect)
{
    if (!inRow || inRow->GetTree() != this) return;
    SelectionMode const mode = GetSelectionMode();
    if (mode == SelectionMode::kNone && inSelect) return;
    QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::Rows;
    if (!inSelect)
        flags |= QItemSelectionModel::Deselect;
    else if (mode == SelectionMode::kSingle)
        flags |= QItemSelectionModel::ClearAndSelect;
    else
        flags |= QItemSelectionModel::Select;
    QModelIndex const index = d->model->IndexForRow(inRow.get());
    // A selected row is also where the arrow keys continue from.
    if (inSelect)
        d->view->selectionModel()->setCurrentIndex(index, flags);
    else
        d->view->selectionModel()->select(index, flags);
}

void UI_MultiColumnTree::ClearSelection()
{
    d->view->selectionModel()->clearSelection();
}

std::vector<RowPtr> UI_MultiColumnTree::GetSelectedRows() const
{
    std::vector<std::pair<std::vector<int>, RowPtr>> keyed;
    for (QModelIndex const &index : d->view->selectionModel()->selectedRows(0)) {
        Row *row = d->model->RowFromIndex(index);
        keyed.emplace_back(DisplayKey(row), RowPtr(row));
    }
    std::sort(keyed.begin(), keyed.end(), [](auto const &a, auto const &b) { return a.first < b.first; });
    std::vector<RowPtr> rows;
    rows.reserve(keyed.size());
    for (auto &entry : keyed)
        rows.push_back(std::move(entry.second));
    return rows;
}

void UI_MultiColumnTree::SetDrawCellFxn(DrawCellFxn inFxn)
{
    d->delegate->mDrawCell = std::move(inFxn);
    d->view->viewport()->update();
}

void UI_MultiColumnTree::SetRowVisibilityChangedFxn(RowVisibilityChangedFxn inFxn)
{
    d->visibilityFxn = std::move(inFxn);
    d->view->RequestSync();
}

void UI_MultiColumnTree::SetRowDisclosureChangedFxn(RowDisclosureChangedFxn inFxn)
{
    d->disclosureFxn = std::move(inFxn);
}
void UI_MultiColumnTree::SetSelectionChangedFxn(SelectionChangedFxn inFxn)
{
    d->selectionFxn = std::move(inFxn);
}

void UI_MultiColumnTree::SetIsQuiet(bool inQuiet)
{
    if (d->quiet == inQuiet) return;
    d->quiet = inQuiet;
    // Rows that came into view while quiet are announced now.
    if (!inQuiet) d->view->RequestSync();
}

bool UI_MultiColumnTree::IsQuiet() const
{
    return d->quiet;
}

std::vector<RowPtr> UI_MultiColumnTree::GetVisibleRows() const
{
    return d->visible;
}
int UI_MultiColumnTree::CountPlacedCellViews() const
{
    return static_cast<int>(d->placed.size());
}

} // namespace kivui

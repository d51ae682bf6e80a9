#include "UI_MultiColumnTree_p.h"

#include <kivui/UI_SubView.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QHeaderView>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace kivui::detail {

using kivcore::RectF;

void MultiColumnTreeModel::Renumber(Row &inParent, std::size_t inFrom)
{
    for (std::size_t i = inFrom; i < inParent.mChildren.size(); ++i)
        inParent.mChildren[i]->mIndexInParent = static_cast<int>(i);
}

void MultiColumnTreeModel::SortChildren(Row &inParent, UI_MultiColumnTree::RowLess const &inLess)
{
    std::stable_sort(inParent.mChildren.begin(), inParent.mChildren.end(), inLess);
    Renumber(inParent, 0);
    for (auto const &child : inParent.mChildren) {
        if (!child->mChildren.empty()) SortChildren(*child, inLess);
    }
}

// ---------------------------------------------------------------------------

MultiColumnTreeModel::MultiColumnTreeModel(UI_MultiColumnTree &inTree, Row &inRoot, QObject *inParent)
    : QAbstractItemModel(inParent), mTree(inTree), mRoot(inRoot), mHeaders(1)
{
}

Row *MultiColumnTreeModel::RowFromIndex(QModelIndex const &inIndex) const
{
    return inIndex.isValid() ? static_cast<Row *>(inIndex.internalPointer()) : &mRoot;
}

QModelIndex MultiColumnTreeModel::IndexForRow(Row const *inRow, int inColumn) const
{
    if (!inRow || inRow == &mRoot || inRow->mTree != &mTree) return {};
    return createIndex(inRow->mIndexInParent, inColumn, const_cast<Row *>(inRow));
}

QModelIndex MultiColumnTreeModel::index(int inRow, int inColumn, QModelIndex const &inParent) const
{
    Row const *parent = RowFromIndex(inParent);
    if (inRow < 0 || inColumn < 0 || inColumn >= mColumnCount || inRow >= parent->CountChildRows()) return {};
    return createIndex(inRow, inColumn, parent->mChildren[static_cast<std::size_t>(inRow)].get());
}

QModelIndex MultiColumnTreeModel::parent(QModelIndex const &inIndex) const
{
    if (!inIndex.isValid()) return {};
    Row const *parent = RowFromIndex(inIndex)->mParent;
    if (!parent || parent == &mRoot) return {};
    return createIndex(parent->mIndexInParent, 0, const_cast<Row *>(parent));
}

int MultiColumnTreeModel::rowCount(QModelIndex const &inParent) const
{
    if (inParent.column() > 0) return 0;
    return RowFromIndex(inParent)->CountChildRows();
}

int MultiColumnTreeModel::columnCount(QModelIndex const &) const
{
    return mColumnCount;
}

bool MultiColumnTreeModel::hasChildren(QModelIndex const &inParent) const
{
    return rowCount(inParent) > 0;
}

QVariant MultiColumnTreeModel::data(QModelIndex const &inIndex, int inRole) const
{
    if (!inIndex.isValid() || inRole != Qt::DisplayRole) return {};
    Row const *row = RowFromIndex(inIndex);
    auto const column = static_cast<std::size_t>(inIndex.column());
    if (column >= row->mTexts.size()) return {};
    return ToQString(row->mTexts[column]);
}

QVariant MultiColumnTreeModel::headerData(int inSection, Qt::Orientation inOrientation, int inRole) const
{
    if (inOrientation != Qt::Horizontal || inRole != Qt::DisplayRole) return {};
    return Header(inSection);
}

Qt::ItemFlags MultiColumnTreeModel::flags(QModelIndex const &inIndex) const
{
    if (!inIndex.isValid()) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

void MultiColumnTreeModel::SetColumnCount(int inCount)
{
    if (inCount == mColumnCount) return;
    if (inCount > mColumnCount) {
        beginInsertColumns({}, mColumnCount, inCount - 1);
        mColumnCount = inCount;
        mHeaders.resize(static_cast<std::size_t>(inCount));
        endInsertColumns();
    } else {
        beginRemoveColumns({}, inCount, mColumnCount - 1);
        mColumnCount = inCount;
        mHeaders.resize(static_cast<std::size_t>(inCount));
        endRemoveColumns();
    }
}

void MultiColumnTreeModel::SetHeader(int inColumn, QString const &inText)
{
    if (inColumn < 0 || inColumn >= mColumnCount) return;
    mHeaders[static_cast<std::size_t>(inColumn)] = inText;
    emit headerDataChanged(Qt::Horizontal, inColumn, inColumn);
}

QString MultiColumnTreeModel::Header(int inColumn) const
{
    if (inColumn < 0 || inColumn >= mColumnCount) return {};
    return mHeaders[static_cast<std::size_t>(inColumn)];
}

void MultiColumnTreeModel::Insert(Row &inParent, int inIndex, Row::IntrusivePtr const &inRow)
{
    beginInsertRows(IndexForRow(&inParent), inIndex, inIndex);
    inParent.mChildren.insert(inParent.mChildren.begin() + inIndex, inRow);
    inRow->mParent = &inParent;
    inRow->mTree = &mTree;
    Renumber(inParent, static_cast<std::size_t>(inIndex));
    endInsertRows();
}

void MultiColumnTreeModel::Append(Row &inParent, std::vector<Row::IntrusivePtr> const &inRows)
{
    if (inRows.empty()) return;
    int const first = inParent.CountChildRows();
    beginInsertRows(IndexForRow(&inParent), first, first + static_cast<int>(inRows.size()) - 1);
    inParent.mChildren.insert(inParent.mChildren.end(), inRows.begin(), inRows.end());
    for (auto const &row : inRows) {
        row->mParent = &inParent;
        row->mTree = &mTree;
    }
    Renumber(inParent, static_cast<std::size_t>(first));
    endInsertRows();
}

void MultiColumnTreeModel::Remove(Row &inRow)
{
    Row *parent = inRow.mParent;
    int const index = inRow.mIndexInParent;
    // The row has already left the tree (its mTree is null); its index is
    // made by hand so that the views can still find it.
    QModelIndex const parentIndex = IndexForRow(parent);
    beginRemoveRows(parentIndex, index, index);
    Row::IntrusivePtr keep = parent->mChildren[static_cast<std::size_t>(index)];
    parent->mChildren.erase(parent->mChildren.begin() + index);
    Renumber(*parent, static_cast<std::size_t>(index));
    inRow.mParent = nullptr;
    inRow.mIndexInParent = 0;
    endRemoveRows();
}

void MultiColumnTreeModel::RemoveAll()
{
    beginResetModel();
    for (auto const &child : mRoot.mChildren) {
        child->mParent = nullptr;
        child->mIndexInParent = 0;
    }
    mRoot.mChildren.clear();
    endResetModel();
}

void MultiColumnTreeModel::Sort(UI_MultiColumnTree::RowLess const &inLess)
{
    emit layoutAboutToBeChanged();
    QModelIndexList const before = persistentIndexList();
    std::vector<std::pair<Row *, int>> rows;
    rows.reserve(static_cast<std::size_t>(before.size()));
    for (QModelIndex const &index : before)
        rows.emplace_back(RowFromIndex(index), index.column());
    SortChildren(mRoot, inLess);
    QModelIndexList after;
    after.reserve(before.size());
    for (auto const &[row, column] : rows)
        after.append(IndexForRow(row, column));
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

void MultiColumnTreeModel::RowChanged(Row const &inRow)
{
    QModelIndex const first = IndexForRow(&inRow, 0);
    if (first.isValid()) emit dataChanged(first, IndexForRow(&inRow, mColumnCount - 1));
}

// ---------------------------------------------------------------------------

CellHost::CellHost(Row &inRow, QWidget *inParent) : QWidget(inParent), mRow(inRow) {}

void CellHost::resizeEvent(QResizeEvent *inEvent)
{
    QWidget::resizeEvent(inEvent);
    if (mRow.mCellView && mRow.mCellView->UI_GetWidget() && mRow.mCellView->UI_GetWidget()->parentWidget() == this) {
        mRow.mCellView->UI_SetLocalRectF(RectF{0.0f, 0.0f, float(width()), float(height())});
    }
}

// ---------------------------------------------------------------------------

MultiColumnTreeDelegate::MultiColumnTreeDelegate(UI_MultiColumnTree &inTree, MultiColumnTreeModel &inModel,
                                                 QObject *inParent)
    : QStyledItemDelegate(inParent), mTree(inTree), mModel(inModel)
{
}

void MultiColumnTreeDelegate::paint(QPainter *inPainter, QStyleOptionViewItem const &inOption,
                                    QModelIndex const &inIndex) const
{
    Row *row = mModel.RowFromIndex(inIndex);
    bool const custom = row->mCellView || mDrawCell;
    if (!custom) {
        QStyledItemDelegate::paint(inPainter, inOption, inIndex);
        return;
    }
    // Background and selection only; the cell view or the callback does the rest.
    QStyleOptionViewItem option = inOption;
    initStyleOption(&option, inIndex);
    option.text.clear();
    QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &option, inPainter, option.widget);
    if (row->mCellView) return;

    static drawbot::QtSupplier const fallbackSupplier;
    drawbot::SupplierInterface const *supplier = mTree.UI_GetDrawSupplier();
    if (!supplier) supplier = &fallbackSupplier;
    inPainter->save();
    {
        drawbot::Drawbot drawbot(*supplier, *inPainter);
        QRect const r = inOption.rect;
        mDrawCell(drawbot, Row::IntrusivePtr(row), inIndex.column(),
                  RectF{float(r.x()), float(r.y()), float(r.width()), float(r.height())});
    }
    inPainter->restore();
}

QSize MultiColumnTreeDelegate::sizeHint(QStyleOptionViewItem const &, QModelIndex const &inIndex) const
{
    Row const *row = mModel.RowFromIndex(inIndex);
    int const height = std::max(1, static_cast<int>(std::lround(row->GetEffectiveHeight())));
    return QSize(0, height);
}

QWidget *MultiColumnTreeDelegate::createEditor(QWidget *, QStyleOptionViewItem const &, QModelIndex const &) const
{
    return nullptr;
}

void MultiColumnTreeDelegate::updateEditorGeometry(QWidget *inEditor, QStyleOptionViewItem const &inOption,
                                                   QModelIndex const &) const
{
    QRect r = inOption.rect;
    if (auto const *view = dynamic_cast<MultiColumnTreeView const *>(inOption.widget))
        r.setRight(std::max(r.left(), view->ColumnsRight()));
    inEditor->setGeometry(r);
}

// ---------------------------------------------------------------------------

MultiColumnTreeView::MultiColumnTreeView()
{
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAllColumnsShowFocus(true);
    setHeaderHidden(true);
    setSortingEnabled(false);
    header()->setSectionsMovable(false);
    header()->setSortIndicatorShown(false);
    header()->setStretchLastSection(true);
    // Explicit column widths are taken as given, however narrow.
    header()->setMinimumSectionSize(1);
    // Any of these needs the rows laid out again, whatever else is pending.
    auto const fullLayout = [this] { mPlacementLayout = false; };
    connect(this, &QTreeView::expanded, this, fullLayout);
    connect(this, &QTreeView::collapsed, this, fullLayout);
}

void MultiColumnTreeView::setModel(QAbstractItemModel *inModel)
{
    QTreeView::setModel(inModel);
    mPlacementLayout = false;
    if (!inModel) return;
    auto const fullLayout = [this] { mPlacementLayout = false; };
    connect(inModel, &QAbstractItemModel::rowsInserted, this, fullLayout);
    connect(inModel, &QAbstractItemModel::rowsRemoved, this, fullLayout);
    connect(inModel, &QAbstractItemModel::columnsInserted, this, fullLayout);
    connect(inModel, &QAbstractItemModel::columnsRemoved, this, fullLayout);
    connect(inModel, &QAbstractItemModel::modelReset, this, fullLayout);
    connect(inModel, &QAbstractItemModel::layoutChanged, this, fullLayout);
}

void MultiColumnTreeView::SetGridLines(bool inOn)
{
    if (mGridLines == inOn) return;
    mGridLines = inOn;
    viewport()->update();
}

int MultiColumnTreeView::ColumnsRight() const
{
    QHeaderView const *h = header();
    int right = 0;
    for (int visual = 0; visual < h->count(); ++visual) {
        int const logical = h->logicalIndex(visual);
        if (h->isSectionHidden(logical)) continue;
        right = std::max(right, columnViewportPosition(logical) + columnWidth(logical) - 1);
    }
    return right;
}

std::vector<Row *> MultiColumnTreeView::CollectVisibleRows()
{
    std::vector<Row *> rows;
    if (!model() || !isVisible()) return rows;
    executeDelayedItemsLayout();
    auto const *treeModel = static_cast<MultiColumnTreeModel const *>(model());
    int const height = viewport()->height();
    int const x = columnViewportPosition(header()->logicalIndex(0));
    for (QModelIndex index = indexAt(QPoint(x, 0)); index.isValid(); index = indexBelow(index)) {
        if (visualRect(index).top() >= height) break;
        rows.push_back(treeModel->RowFromIndex(index));
    }
    return rows;
}

void MultiColumnTreeView::RequestSync()
{
    if (mSyncPending || !mTree) return;
    mSyncPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            mSyncPending = false;
            if (mTree) mTree->d->Sync();
        },
        Qt::QueuedConnection);
}

void MultiColumnTreeView::PlaceIndexWidget(QModelIndex const &inIndex, QWidget *inHost)
{
    executeDelayedItemsLayout();
    setIndexWidget(inIndex, inHost);
    mPlacementLayout = true;
}

void MultiColumnTreeView::doItemsLayout()
{
    if (mPlacementLayout) {
        mPlacementLayout = false;
        QAbstractItemView::doItemsLayout(); // positions the index widgets
        return;
    }
    QTreeView::doItemsLayout();
}

void MultiColumnTreeView::drawRow(QPainter *inPainter, QStyleOptionViewItem const &inOption,
                                  QModelIndex const &inIndex) const
{
    QTreeView::drawRow(inPainter, inOption, inIndex);
    if (!mGridLines) return;
    inPainter->save();
    inPainter->setPen(palette().color(QPalette::Mid));
    QRect const r = inOption.rect;
    int const right = ColumnsRight();
    inPainter->drawLine(r.left(), r.bottom(), right, r.bottom());
    QHeaderView const *h = header();
    for (int visual = 0; visual < h->count(); ++visual) {
        int const logical = h->logicalIndex(visual);
        if (h->isSectionHidden(logical)) continue;
        int const x = columnViewportPosition(logical) + columnWidth(logical) - 1;
        inPainter->drawLine(x, r.top(), x, r.bottom());
    }
    inPainter->restore();
}

void MultiColumnTreeView::scrollContentsBy(int inDx, int inDy)
{
    QTreeView::scrollContentsBy(inDx, inDy);
    RequestSync();
}

void MultiColumnTreeView::updateGeometries()
{
    QTreeView::updateGeometries();
    RequestSync();
}

void MultiColumnTreeView::resizeEvent(QResizeEvent *inEvent)
{
    QTreeView::resizeEvent(inEvent);
    RequestSync();
}

} // namespace kivui::detail

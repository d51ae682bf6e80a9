#pragma once

// Not part of the kivui API: the model/view pair behind UI_MultiColumnTree.

#include <kivui/UI_MultiColumnTree.h>

#include <QAbstractItemModel>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <vector>

namespace kivui {
namespace detail {

using Row = UI_MultiColumnTreeRow;

inline QString ToQString(std::u16string const &inText)
{
    return QString::fromUtf16(inText.data(), static_cast<qsizetype>(inText.size()));
}

// Item model over the row objects: an index's internal pointer is its row.
class MultiColumnTreeModel final : public QAbstractItemModel {
public:
    MultiColumnTreeModel(UI_MultiColumnTree &inTree, Row &inRoot, QObject *inParent);

    QModelIndex index(int inRow, int inColumn, QModelIndex const &inParent = {}) const override;
    QModelIndex parent(QModelIndex const &inIndex) const override;
    int rowCount(QModelIndex const &inParent = {}) const override;
    int columnCount(QModelIndex const &inParent = {}) const override;
    bool hasChildren(QModelIndex const &inParent = {}) const override;
    QVariant data(QModelIndex const &inIndex, int inRole) const override;
    QVariant headerData(int inSection, Qt::Orientation inOrientation, int inRole) const override;
    Qt::ItemFlags flags(QModelIndex const &inIndex) const override;

    // The hidden root for an invalid index.
    Row *RowFromIndex(QModelIndex const &inIndex) const;
    QModelIndex IndexForRow(Row const *inRow, int inColumn = 0) const;

    void SetColumnCount(int inCount);
    void SetHeader(int inColumn, QString const &inText);
    QString Header(int inColumn) const;

    void Insert(Row &inParent, int inIndex, Row::IntrusivePtr const &inRow);
    void Append(Row &inParent, std::vector<Row::IntrusivePtr> const &inRows);
    void Remove(Row &inRow);
    void RemoveAll();
    void Sort(UI_MultiColumnTree::RowLess const &inLess);
    void RowChanged(Row const &inRow);

    static void Renumber(Row &inParent, std::size_t inFrom);
    static void SortChildren(Row &inParent, UI_MultiColumnTree::RowLess const &inLess);

private:
    UI_MultiColumnTree &mTree;
    Row &mRoot;
    int mColumnCount = 1;
    std::vector<QString> mHeaders;
};

// Hosts a row's cell view inside the viewport; resizing it resizes the cell.
class CellHost final : public QWidget {
public:
    CellHost(Row &inRow, QWidget *inParent);
    Row &GetRow() const { return mRow; }

protected:
    void resizeEvent(QResizeEvent *inEvent) override;

private:
    Row &mRow;
};

class MultiColumnTreeDelegate final : public QStyledItemDelegate {
public:
    MultiColumnTreeDelegate(UI_MultiColumnTree &inTree, MultiColumnTreeModel &inModel, QObject *inParent);

    void paint(QPainter *inPainter, QStyleOptionViewItem const &inOption, QModelIndex const &inIndex) const override;
    QSize sizeHint(QStyleOptionViewItem const &inOption, QModelIndex const &inIndex) const override;
    QWidget *createEditor(QWidget *, QStyleOptionViewItem const &, QModelIndex const &) const override;
    void updateEditorGeometry(QWidget *inEditor, QStyleOptionViewItem const &inOption,
                              QModelIndex const &inIndex) const override;

    UI_MultiColumnTree::DrawCellFxn mDrawCell;

private:
    UI_MultiColumnTree &mTree;
    MultiColumnTreeModel &mModel;
};

class MultiColumnTreeView final : public QTreeView {
public:
    MultiColumnTreeView();

    void SetTree(UI_MultiColumnTree *inTree) { mTree = inTree; }
    void SetGridLines(bool inOn);
    bool HasGridLines() const { return mGridLines; }
    // Right edge of the last visible column, in viewport coordinates.
    int ColumnsRight() const;
    // Rows intersecting the viewport, top to bottom.
    std::vector<Row *> CollectVisibleRows();
    void RequestSync();
    void FlushLayout() { executeDelayedItemsLayout(); }
    void ScheduleLayout()
    {
        mPlacementLayout = false;
        scheduleDelayedItemsLayout();
    }
    // Places inHost as the index widget of inIndex. Qt then lays out every
    // row again, which placing a widget over a row of known height does not
    // need: unless something else asks for a layout before it runs, only
    // the widgets are positioned.
    void PlaceIndexWidget(QModelIndex const &inIndex, QWidget *inHost);
    void doItemsLayout() override;
    void setModel(QAbstractItemModel *inModel) override;

protected:
    void drawRow(QPainter *inPainter, QStyleOptionViewItem const &inOption, QModelIndex const &inIndex) const override;
    void scrollContentsBy(int inDx, int inDy) override;
    void updateGeometries() override;
    void resizeEvent(QResizeEvent *inEvent) override;

private:
    UI_MultiColumnTree *mTree = nullptr;
    bool mGridLines = false;
    bool mSyncPending = false;
    bool mPlacementLayout = false;
};

} // namespace detail

struct UI_MultiColumnTree::Private {
    explicit Private(UI_MultiColumnTree &inTree, detail::MultiColumnTreeView *inView);

    void Sync();
    void Place(UI_MultiColumnTreeRow &inRow);
    void Unplace(UI_MultiColumnTreeRow &inRow);
    // Unplaces and forgets a subtree that leaves the tree.
    // Takes the row and its descendants out of the tree. Their cell views
    // are detached from the tree at once, or, with `outCells`, collected
    // there for the caller to detach together.
    void Forget(UI_MultiColumnTreeRow &inRow, bool inDetachCells, std::vector<UI_Node *> *outCells = nullptr);
    void CellViewChanged(UI_MultiColumnTreeRow &inRow, kivcore::utility::IntrusivePtr<UI_SubView> const &inOld);
    void HeightChanged(UI_MultiColumnTreeRow &inRow, float inOld);
    void OnExpansion(QModelIndex const &inIndex, bool inOpened);

    UI_MultiColumnTree &tree;
    UI_MultiColumnTreeRow::IntrusivePtr root;
    detail::MultiColumnTreeView *view;
    detail::MultiColumnTreeModel *model;
    detail::MultiColumnTreeDelegate *delegate;
    QWidget *parking; // holds cell widgets that are not placed in the viewport
    std::vector<UI_MultiColumnTreeRow::IntrusivePtr> visible;
    std::vector<UI_MultiColumnTreeRow *> placed;
    RowVisibilityChangedFxn visibilityFxn;
    RowDisclosureChangedFxn disclosureFxn;
    SelectionChangedFxn selectionFxn;
    float defaultRowHeight = kDefaultRowHeight;
    int customHeightRows = 0;
    bool quiet = false;
    bool syncing = false;
    bool autoResize = true;
};

} // namespace kivui

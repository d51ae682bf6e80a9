#pragma once

#include <kivui/UI_MultiColumnTreeRow.h>
#include <kivui/UI_SubView.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QTreeView;

namespace kivui {

// A tree of rows in one or more columns, over a QTreeView and its own item
// model. Rows are cheap: a row's cell view is asked for (through the row
// visibility function) only when the row scrolls or opens into view, and is
// put on screen only while the row is visible or near the visible area, so a
// tree of tens of thousands of rows costs what its visible rows cost.
//
// Cell views are child nodes of the tree (for drawing suppliers and keyboard
// dispatch); their widgets live in the tree's viewport, so their local
// rectangle is relative to the row, not to the tree (see GetRowRect).
//
// Callbacks are not called while the tree is quiet (SetIsQuiet); rows that
// came into view meanwhile are announced when it stops being quiet.
class KIVUI_EXPORT UI_MultiColumnTree : public UI_SubView {
public:
    using RowPtr = kivcore::utility::IntrusivePtr<UI_MultiColumnTreeRow>;
    // Paints one plain cell (a row without cell view); the rectangle is in the
    // coordinates of the drawbot's painter.
    using DrawCellFxn = std::function<void(drawbot::Drawbot &, RowPtr const &, int inColumn, kivcore::RectF const &)>;
    using RowVisibilityChangedFxn = std::function<void(RowPtr const &)>;
    using RowDisclosureChangedFxn = std::function<void(RowPtr const &, bool inOpened)>;
    using SelectionChangedFxn = std::function<void()>;
    // Strict weak order over sibling rows: true when the first goes first.
    using RowLess = std::function<bool(RowPtr const &, RowPtr const &)>;

    enum class SelectionMode { kNone, kSingle, kMultiple };

    static constexpr float kDefaultRowHeight = 20.0f;

    UI_MultiColumnTree();

    // Columns. A new tree has one column, no header, no grid lines, fixed
    // column order and the last column taking up the remaining width.
    void SetColumnCount(int inCount);
    int GetColumnCount() const;
    void SetColumnHeader(int inColumn, std::u16string inText);
    std::u16string GetColumnHeader(int inColumn) const;
    void SetShowHeader(bool inShow);
    bool IsHeaderShown() const;
    void SetGridLines(bool inGridLines);
    bool HasGridLines() const;
    void SetSortIndicatorShown(bool inShown);
    bool IsSortIndicatorShown() const;
    // Whether the user may drag columns into another order.
    void SetColumnsMovable(bool inMovable);
    bool AreColumnsMovable() const;
    // When on, the columns always fill the tree's width: the last column takes
    // up whatever the others leave, and the user may resize them. When off,
    // every column keeps the width it was given.
    void SetColumnsAutoResize(bool inAutoResize);
    bool AreColumnsAutoResize() const;
    void SetColumnWidth(int inColumn, float inWidth);
    float GetColumnWidth(int inColumn) const;
    // Whether top-level rows leave room for a disclosure triangle.
    void SetRootIsDecorated(bool inDecorated);

    // Height of rows whose own height is 0.
    void SetDefaultRowHeight(float inHeight);
    float GetDefaultRowHeight() const;

    // Rows. A null parent means a top-level row.
    RowPtr AppendRow(RowPtr const &inParent = {});
    // Appends inCount rows at once: one model update instead of inCount.
    std::vector<RowPtr> AppendRows(RowPtr const &inParent, int inCount);
    // inIndex is clamped to [0, child count].
    RowPtr InsertRow(RowPtr const &inParent, int inIndex);
    // Removes the row and its descendants; their cell views leave the tree.
    void RemoveRow(RowPtr const &inRow);
    void DeleteAllRows();
    int CountRows() const; // top-level rows
    RowPtr GetRow(int inIndex) const;

    // Disclosure; calls the disclosure function when the state changes.
    void OpenRow(RowPtr const &inRow, bool inOpen);
    // Every row whose ancestors are all opened, in display order.
    std::vector<RowPtr> GetOpenedRows() const;
    // Sum of the heights of GetOpenedRows().
    float GetFullOpenedRowsHeight() const;

    // Sorts the children of every row (and the top-level rows); stable.
    void SortTree(RowLess const &inLess);

    // Opens the row's ancestors and scrolls until the row is visible.
    void ScrollRowIntoView(RowPtr const &inRow);
    // The row's rectangle (right of its disclosure triangle, across all
    // columns) in the tree's coordinates; empty when the row is not shown.
    kivcore::RectF GetRowRect(RowPtr const &inRow) const;
    // The row under a point in the tree's coordinates, or null.
    RowPtr GetRowAtPoint(kivcore::PointF const &inPoint) const;

    // Lays the rows out again now (after appending rows or changing heights)
    // and brings the visible rows and their cell views up to date.
    void Layout();

    // Selection.
    void SetSelectionMode(SelectionMode inMode);
    SelectionMode GetSelectionMode() const;
    void SelectRow(RowPtr const &inRow, bool inSelect = true);
    void ClearSelection();
    // In display order.
    std::vector<RowPtr> GetSelectedRows() const;

    // Callbacks.
    // Paints plain rows; without it their column texts are drawn.
    void SetDrawCellFxn(DrawCellFxn inFxn);
    // Called each time a row enters the visible area (scrolled, opened or
    // laid out into view), from the event loop or from Layout and
    // ScrollRowIntoView. A handler typically gives a row without a cell view
    // its cell view; the tree puts it on screen right after the call.
    void SetRowVisibilityChangedFxn(RowVisibilityChangedFxn inFxn);
    // Called when a row is opened or closed, by the user or by OpenRow.
    void SetRowDisclosureChangedFxn(RowDisclosureChangedFxn inFxn);
    void SetSelectionChangedFxn(SelectionChangedFxn inFxn);
    void SetIsQuiet(bool inQuiet);
    bool IsQuiet() const;

    // Rows in the visible area as of the last update, in display order.
    std::vector<RowPtr> GetVisibleRows() const;
    // Number of cell views currently placed in the viewport.
    int CountPlacedCellViews() const;
    // The Qt view, for embedding and for tests that drive it with Qt Test.
    QTreeView *GetTreeView() const;

protected:
    ~UI_MultiColumnTree() override;

private:
    friend class UI_MultiColumnTreeRow;
    friend class detail::MultiColumnTreeModel;
    friend class detail::MultiColumnTreeView;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

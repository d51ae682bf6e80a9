#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/RefCounted.h>

#include <any>
#include <string>
#include <vector>

namespace kivui {

class UI_MultiColumnTree;
class UI_SubView;
namespace detail {
class MultiColumnTreeModel;
class MultiColumnTreeView;
class MultiColumnTreeDelegate;
class CellHost;
} // namespace detail

// One row of a UI_MultiColumnTree. Rows are made by UI_MultiColumnTree::AppendRow
// and stay valid (as data) while someone holds them, even after they were
// removed from their tree; a removed row has no tree and no parent.
//
// A row shows either a cell view (a sub-view spanning all columns right of the
// disclosure triangle) or, when it has none, plain cells painted by the tree's
// draw-cell function or from the row's column texts.
class KIVUI_EXPORT UI_MultiColumnTreeRow : public kivcore::utility::RefCountedInterface {
public:
    using IntrusivePtr = kivcore::utility::IntrusivePtr<UI_MultiColumnTreeRow>;

    UI_MultiColumnTreeRow(UI_MultiColumnTreeRow const &) = delete;
    UI_MultiColumnTreeRow &operator=(UI_MultiColumnTreeRow const &) = delete;

    // The tree the row belongs to; null once removed.
    UI_MultiColumnTree *GetTree() const { return mTree; }
    // Null for a top-level row.
    IntrusivePtr GetParentRow() const;
    int CountChildRows() const { return static_cast<int>(mChildren.size()); }
    // Null when inIndex is out of range.
    IntrusivePtr GetChildRow(int inIndex) const;
    // Position among the parent's children (display order).
    int GetIndexInParent() const { return mIndexInParent; }
    // Number of ancestors: 0 for a top-level row.
    int GetDepth() const;

    // The view shown in the row. It is put on screen only while the row is
    // visible or near the visible area.
    void SetCellView(kivcore::utility::IntrusivePtr<UI_SubView> inView);
    kivcore::utility::IntrusivePtr<UI_SubView> GetCellView() const;

    // Disclosed: the children are shown (UI_MultiColumnTree::OpenRow).
    bool IsOpened() const { return mOpened; }
    void SetOpened(bool inOpened);

    // Height in UI units; 0 (the default) takes the tree's default row height.
    void SetHeight(float inHeight);
    float GetHeight() const { return mHeight; }
    // The height the row is shown with.
    float GetEffectiveHeight() const;

    // Text of a plain cell, painted when no draw-cell function is set.
    void SetText(int inColumn, std::u16string inText);
    std::u16string GetText(int inColumn) const;

    void SetUserData(std::any inData) { mUserData = std::move(inData); }
    std::any const &GetUserData() const { return mUserData; }

    // True between the visibility callback that announced the row and the
    // moment it leaves the visible area.
    bool IsVisible() const { return mVisible; }

protected:
    ~UI_MultiColumnTreeRow() override;

private:
    UI_MultiColumnTreeRow();
    friend class UI_MultiColumnTree;
    friend class detail::MultiColumnTreeModel;
    friend class detail::MultiColumnTreeView;
    friend class detail::MultiColumnTreeDelegate;
    friend class detail::CellHost;

    UI_MultiColumnTree *mTree = nullptr;
    UI_MultiColumnTreeRow *mParent = nullptr; // the tree's hidden root for top-level rows
    std::vector<IntrusivePtr> mChildren;
    kivcore::utility::IntrusivePtr<UI_SubView> mCellView;
    std::vector<std::u16string> mTexts;
    std::any mUserData;
    float mHeight = 0.0f;
    int mIndexInParent = 0;
    bool mOpened = false;
    bool mVisible = false;
    bool mHosted = false; // the cell view sits in the tree's viewport
};

} // namespace kivui

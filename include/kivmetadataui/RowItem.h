#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/RefCounted.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kivui {
class UI_SubView;
}

namespace kivmetadataui::layout {

struct LayoutItem;

// One row of a table: its own container view and two cells, column 0 the
// label and column 1 the content (either may be empty).
class KIVMETADATAUI_EXPORT RowItem {
public:
    // The value of the space after a row that makes it abut the next one:
    // no row gap, and the next row starts one unit higher.
    static constexpr float kAbutNextRow = -1.0f;

    RowItem();
    ~RowItem();

    RowItem(RowItem const &) = delete;
    RowItem &operator=(RowItem const &) = delete;

    kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &GetView() const { return mView; }

    // Replaces the item of a column (0 or 1) and adds its view to the row.
    void SetColumnItem(std::int32_t inColumn, std::shared_ptr<LayoutItem> inItem);
    // The item of a column, possibly empty; an index outside the slots throws
    // std::out_of_range.
    std::shared_ptr<LayoutItem> GetColumnItem(std::int32_t inColumn) const;
    std::vector<std::shared_ptr<LayoutItem>> &GetColumns() { return mColumns; }
    std::vector<std::shared_ptr<LayoutItem>> const &GetColumns() const { return mColumns; }

    // Extra space above the row (ignored for a table's first row).
    float GetSpaceBefore() const { return mSpaceBefore; }
    void SetSpaceBefore(float inSpace) { mSpaceBefore = inSpace; }
    // Extra space below the row; kAbutNextRow makes it abut the next row.
    float GetSpaceAfter() const { return mSpaceAfter; }
    void SetSpaceAfter(float inSpace) { mSpaceAfter = inSpace; }

private:
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mView;
    std::vector<std::shared_ptr<LayoutItem>> mColumns;
    float mSpaceBefore = 0.0f;
    float mSpaceAfter = 0.0f;
};

} // namespace kivmetadataui::layout

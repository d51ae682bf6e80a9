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

    kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &GetView() const;

    // Replaces the item of a column (0 or 1) and adds its view to the row.
    void SetColumnItem(std::int32_t inColumn, std::shared_ptr<LayoutItem> inItem);
    // The item of a column, possibly empty; an index outside the slots throws
    // std::out_of_range.
    std::shared_ptr<LayoutItem> GetColumnItem(std::int32_t inColumn) const;
    std::vector<std::shared_ptr<LayoutItem>> &GetColumns();
    std::vector<std::shared_ptr<LayoutItem>> const &GetColumns() const;

    // Extra space above the row (ignored for a table's first row).
    float GetSpaceBefore() const;
    void SetSpaceBefore(float inSpace);
    // Extra space below the row; kAbutNextRow makes it abut the next row.
    float GetSpaceAfter() const;
    void SetSpaceAfter(float inSpace);

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui::layout

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadataui/LayoutItem.h>
#include <kivmetadataui/RowItem.h>
#include <kivmetadataui/TableLayoutDelegate.h>

#include <kivcore/Flags.h>
#include <kivcore/RefCounted.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace kivui {
class UI_SubView;
}

namespace kivmetadataui::layout {

// The two-column layout engine of the metadata panels: a vertical list of
// rows, each with a label column and a content column, where a row's content
// may be a whole nested table. It measures and shares label widths, stacks
// the rows with fixed gaps and margins and reports the total height to its
// container through a TableLayoutDelegate. All geometry is in float units.
class KIVMETADATAUI_EXPORT TableLayout {
public:
    static constexpr float kDefaultLabelWidth = 100.0f;
    static constexpr float kMaxLabelWidth = 220.0f;
    static constexpr float kLabelContentGap = 10.0f;
    static constexpr float kRowGap = 7.0f;
    static constexpr float kMargin = 10.0f;
    static constexpr float kMinRowHeight = 19.0f;
    static constexpr float kFixedContentWidth = 400.0f;

    // Margin mask bits of SetMargins.
    enum MarginBits : unsigned char { kMarginLeft = 1, kMarginTop = 2, kMarginRight = 4, kMarginBottom = 8 };

    // Width of the label cell of an item; 0 when it has none.
    using Measurer = std::function<float(LayoutItem const &)>;

    explicit TableLayout(kivcore::utility::IntrusivePtr<kivui::UI_SubView> inView);
    ~TableLayout();

    TableLayout(TableLayout const &) = delete;
    TableLayout &operator=(TableLayout const &) = delete;

    // Rows are only ever appended.
    void InsertRow(std::shared_ptr<RowItem> inRowItem);
    void InsertRow(std::int32_t inColumn, std::shared_ptr<LayoutItem> inItem);
    // Appends a row whose column 0 holds inTableLayout across the whole content width.
    void InsertTable(std::shared_ptr<TableLayout> inTableLayout);

    std::int32_t CountRows() const;
    // Throws std::out_of_range for an index outside the rows.
    std::shared_ptr<RowItem> GetRow(std::int32_t inIndex) const;
    std::vector<std::shared_ptr<RowItem>> const &GetRows() const;

    // Lays the rows out in the container's current width; returns the
    // resulting height of the table's view.
    float Layout();
    // As Layout, but a delegate is given the content width 400.0.
    float LayoutFixedWidth();

    // Measures label widths from scratch (capped at 220.0) and shares them
    // with nested tables whose label width mode asks for it.
    void UpdateLabelWidth(Measurer const &inMeasurer);

    // Bit set: that margin is 10.0, clear: 0.
    void SetMargins(kivcore::Flags<unsigned char> inMask);

    kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &GetView() const;
    // The delegate's container view, or the table's own view.
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> GetContainerView();

    float GetLabelWidth() const;
    void SetLabelWidth(float inWidth);
    float GetNestedLabelWidth() const;
    // 0: keeps its own label width; non-zero: adopts a wider label width of
    // its parent; exactly 1: also contributes its own to the parent.
    std::int32_t GetLabelWidthMode() const;
    void SetLabelWidthMode(std::int32_t inMode);

    float GetLeftMargin() const;
    float GetRightMargin() const;
    float GetTopMargin() const;
    float GetBottomMargin() const;

    std::shared_ptr<TableLayoutDelegate> const &GetDelegate() const;
    void SetDelegate(std::shared_ptr<TableLayoutDelegate> inDelegate);

    // A collapsed table measures 0 high.
    bool IsCollapsed() const;
    void SetCollapsed(bool inCollapsed);

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui::layout

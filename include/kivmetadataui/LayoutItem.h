#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/Geometry.h>
#include <kivcore/RefCounted.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace kivui {
class UI_SubView;
}

namespace kivmetadataui {
class Control;
}

namespace kivmetadataui::layout {

class TableLayout;

// One cell of a table row: a view or a control (kind 1), or a whole nested
// table (kind 2). Shared between the row that shows it and the builder that
// made it.
struct KIVMETADATAUI_EXPORT LayoutItem {
    enum ItemKind : std::int32_t { kItemKind_View = 1, kItemKind_Table = 2 };

    // Sizes the view inside the proposed cell rectangle; may change the
    // rectangle's y and height.
    using LayoutFunction = std::function<void(kivui::UI_SubView &, kivcore::RectF &)>;
    // Told (0, the table's label width) each time the row is placed.
    using LabelWidthFunction = std::function<void(std::uint64_t, float)>;

    explicit LayoutItem(kivcore::utility::IntrusivePtr<kivui::UI_SubView> inView);
    explicit LayoutItem(std::shared_ptr<Control> const &inControlPtr);
    explicit LayoutItem(std::shared_ptr<TableLayout> const &inLayout);
    ~LayoutItem();

    LayoutItem(LayoutItem const &) = delete;
    LayoutItem &operator=(LayoutItem const &) = delete;

    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mView;
    // Explicit cell width; 0 takes the column's width.
    float mWidth = 0.0f;
    std::int32_t mKind = kItemKind_View;
    // Empty: the view keeps its own frame.
    LayoutFunction mLayoutFunction;
    LabelWidthFunction mLabelWidthFunction;
    std::shared_ptr<TableLayout> mTable;
    std::shared_ptr<Control> mControl;
};

} // namespace kivmetadataui::layout

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/Geometry.h>
#include <kivcore/RefCounted.h>

namespace kivui {
class UI_SubView;
}

namespace kivmetadataui::layout {

class TableLayout;

// Adapter between a table and the container that shows it (a scroll view, a
// collapsible section): where rows go and who receives the content size.
class KIVMETADATAUI_EXPORT TableLayoutDelegate {
public:
    virtual ~TableLayoutDelegate();

    // The view that receives the rows; its width governs the layout.
    virtual kivcore::utility::IntrusivePtr<kivui::UI_SubView> GetContainerView(TableLayout &inTable) = 0;
    // The computed content width and height of inTable.
    virtual void SetContentSize(TableLayout &inTable, kivcore::PointF const &inSize) = 0;

protected:
    TableLayoutDelegate() = default;
    TableLayoutDelegate(TableLayoutDelegate const &) = default;
    TableLayoutDelegate &operator=(TableLayoutDelegate const &) = default;
};

} // namespace kivmetadataui::layout

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_SubView.h>

#include <memory>

namespace kivui {
class UI_Checkbox;
}

namespace kivmetadataui {

// The cell of one MetadataView row: an optional check box, the label, the
// value control and the link button, laid out left to right. The value
// starts where the label column ends, so values of rows at every depth line
// up: the label column is the shared width of all views (or the cell's own)
// less the row's indentation.
class KIVMETADATAUI_EXPORT MetadataViewCell : public kivui::UI_SubView {
public:
    using ChildPtr = kivcore::utility::IntrusivePtr<kivui::UI_SubView>;

    MetadataViewCell();

    // Each setter takes the view into the cell (replacing the former one);
    // null removes it.
    void SetChild_Label(ChildPtr const &inLabel);
    ChildPtr GetChild_Label() const;
    void SetChild_Value(ChildPtr const &inValue);
    ChildPtr GetChild_Value() const;
    void SetChild_Link(ChildPtr const &inLink);
    ChildPtr GetChild_Link() const;
    void SetChild_Checkbox(kivcore::utility::IntrusivePtr<kivui::UI_Checkbox> const &inCheckbox);
    kivcore::utility::IntrusivePtr<kivui::UI_Checkbox> GetChild_Checkbox() const;

    // The cell's own label width; setting it stops the cell from following
    // the shared width (MetadataView::GetSharedLabelWidth).
    void SetLabelWidth(float inWidth);
    float GetLabelWidth() const;
    void SetUsesSharedLabelWidth(bool inShared);
    bool UsesSharedLabelWidth() const;
    // How far the tree indents this row; taken off the label column.
    void SetIndent(float inIndent);
    float GetIndent() const;

    void UI_Draw(kivui::drawbot::Drawbot &inDrawbot) override;
    void UI_LayoutChildren() override;
    void UI_SizeChanged(kivcore::PointF const &inOldSize) override;
    bool UI_DoCursor(kivcore::PointF const &inLocalPoint) override;
    // A click beside the controls puts the focus into the value.
    bool UI_DoMouseEvent(kivui::MouseEvent const &inEvent) override;

protected:
    ~MetadataViewCell() override;

private:
    void Replace(ChildPtr &ioSlot, ChildPtr const &inNew);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

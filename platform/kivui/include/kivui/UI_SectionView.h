#pragma once

#include <kivui/UI_SubView.h>

#include <functional>
#include <memory>
#include <string>

namespace kivui {

// A collapsible section: a header with a disclosure triangle and a text,
// above a content view. The owner sizes the section; FrameSizeForContentSize
// tells what frame fits a content size in the current state. Clicking the
// header, or Space/Return/Left/Right while the section has the focus, opens
// and closes it.
class KIVUI_EXPORT UI_SectionView : public UI_SubView {
public:
    static constexpr float kDefaultHeaderHeight = 20.0f;

    using OpenedChangedFxn = std::function<void(UI_SectionView &, bool inOpened)>;

    UI_SectionView();

    kivcore::utility::IntrusivePtr<UI_SubView> GetContentView() const;

    // Opened: header height plus the content height; closed: the header only.
    // The width is the content width.
    kivcore::PointF FrameSizeForContentSize(kivcore::PointF const &inContentSize) const;

    void SetOpened(bool inOpened);
    bool IsOpened() const;

    void SetHeaderText(std::u16string inText);
    std::u16string const &GetHeaderText() const;
    void SetHeaderHeight(float inHeight);
    float GetHeaderHeight() const;
    // In the section's coordinates.
    kivcore::RectF GetHeaderRect() const;
    kivcore::RectF GetDisclosureRect() const;

    // Called after every change of the opened state.
    void SetOpenedChangedFxn(OpenedChangedFxn inFxn);

    void UI_SizeChanged(kivcore::PointF const &oldSize) override;
    void UI_Draw(drawbot::Drawbot &drawbot) override;
    bool UI_DoMouseEvent(MouseEvent const &event) override;
    bool UI_DoKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event) override;

protected:
    ~UI_SectionView() override;

    // Changes the state: shows or hides the content, redraws, reports it.
    // Derived sections extend it to tell their owners.
    virtual void DoSetOpened(bool inOpened);
    // Places the disclosure triangle inside the header; the rect arrives as a
    // square at the header's left edge.
    virtual void AlignDisclosureButtonRect(kivcore::RectF &ioRect) const;
    void LayoutContent();

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

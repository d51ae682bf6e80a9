#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadataui/MetadataSectionView.h>

#include <kivui/UI_SubView.h>

#include <QImage>

#include <functional>
#include <memory>
#include <string>

namespace kivmetadataui {

// Three collapsible sections stacked vertically. The first two share a
// draggable splitter and split the free height by two stored fractions
// (renormalised over the fractions of the opened sections); the third takes
// whatever height is left. A closed section shows its header only.
class KIVMETADATAUI_EXPORT TriSectionSplitterView : public kivui::UI_SubView {
public:
    using SectionPtr = kivcore::utility::IntrusivePtr<MetadataSectionView>;
    // Receives the index of the section that was opened or closed.
    using SectionViewChangedFxn = std::shared_ptr<std::function<void(int)>>;
    // Receives true when the first fraction changed, false for the second.
    using SplitterChangedFxn = std::shared_ptr<std::function<void(bool)>>;

    static constexpr float kSplitterHeight = 6.0f;
    static constexpr float kV7HeaderHeight = 24.0f;
    static constexpr float kV7MinHeight = 30.0f;

    // The three sections become children of the view (top, middle, bottom);
    // a null section gets an empty one. With a parent the view appends
    // itself to it.
    TriSectionSplitterView(kivui::UI_SubView *inParent, SectionPtr inTop, SectionPtr inMiddle, SectionPtr inBottom);

    // Held at 2 although there are three sections; see GetSectionView.
    int GetSectionCount() const;
    int GetSplitterCount() const;
    float GetSplitterHeight() const;
    // 24 under the v7 look, else the toolkit's default header height.
    float GetSectionHeaderHeight() const;
    // 30 under the v7 look, else the default header height plus 6.
    float GetMinHeight() const;

    // 0 and 1 give the top and middle section; 2 asserts (the section count
    // says 2) and still gives the bottom one; any other index asserts and
    // gives null.
    SectionPtr GetSectionView(int inIndex) const;

    // inFirst true: the first section's share, false: the second's. Storing
    // is not range-checked; it lays the view out again and reports inFirst
    // to the splitter-changed function.
    float GetSplitterPercentage(bool inFirst) const;
    void SetSplitterPercentage(bool inFirst, float inValue);

    bool GetSplitterAllowed() const;
    void SetSplitterAllowed(bool inAllowed);

    void SetSectionPrimaryText(int inIndex, std::u16string const &inText);
    void SetSectionSecondaryText(int inIndex, std::u16string const &inText);
    void SetSectionImages(int inIndex, QImage const &inPrimaryImage, QImage const &inSecondaryImage);

    void SetSectionViewChangedFxn(SectionViewChangedFxn inFxn);
    void SetSplitterChangedFxn(SplitterChangedFxn inFxn);

    // The geometry in the view's own coordinates, from its current bounds.
    float SectionHeight(int inIndex) const;
    float SectionTop(int inIndex) const;
    kivcore::RectF SplitterRect(int inIndex) const;
    // Only splitter 0, and only while the first two sections are opened.
    bool IsSplitterActive(int inIndex) const;

    // Places the sections by the geometry above.
    void Layout();

protected:
    ~TriSectionSplitterView() override;

    void UI_SizeChanged(kivcore::PointF const &oldSize) override;
    void UI_Draw(kivui::drawbot::Drawbot &drawbot) override;
    bool UI_DoMouseEvent(kivui::MouseEvent const &event) override;
    bool UI_DoCursor(kivcore::PointF const &localPoint) override;

    void OnSectionViewChanged(MetadataSectionView &inSection);

private:
    friend class TriSectionSplitterViewCapture;
    float AvailableFraction() const;
    float ExpandableHeight() const;
    bool AreUpperSectionsOpened() const;
    void SetFractions(float inFirst, float inSecond);
    void NotifySplitterChanged(bool inFirst);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

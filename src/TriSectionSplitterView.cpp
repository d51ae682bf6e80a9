#include <kivmetadataui/TriSectionSplitterView.h>

#include "ModuleResources.h"

#include <kivcore/Assert.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/SkinVersion.h>
#include <kivui/UI_NodeManager.h>
#include <kivui/drawbot/Drawbot.h>

#include <QPalette>
#include <QWidget>

#include <algorithm>
#include <array>
#include <cmath>

namespace kivmetadataui {

using kivcore::PointF;
using kivcore::RectF;

namespace {

constexpr char kUnit[] = "src/TriSectionSplitterView";
constexpr int kSectionCount = 2;
constexpr int kSplitterCount = 1;
constexpr int kSplitterCursor = 11;
constexpr int kSplitterCursorStyle = 3;
// The first section never reaches a zero share by dragging.
constexpr float kMinFirstFraction = 0.001f;

} // namespace

// Follows a drag of the splitter: the fractions move with the pointer, by the
// fraction of the expandable height it travelled.
class TriSectionSplitterViewCapture : public kivui::InputCapture {
public:
    TriSectionSplitterViewCapture(TriSectionSplitterView *inView, float inStartY, float inFirst, float inSecond,
                                  bool inActive)
        : mView(inView), mStartY(inStartY), mLastY(inStartY), mStartFirst(inFirst), mStartSecond(inSecond),
          mActive(inActive)
    {
    }

    void OnMouseMove(kivui::MouseEvent const &inEvent) override;

private:
    kivcore::utility::IntrusivePtr<TriSectionSplitterView> mView;
    // The state at the press, kept for the life of the drag.
    [[maybe_unused]] float mStartY;
    float mLastY;
    [[maybe_unused]] float mStartFirst;
    [[maybe_unused]] float mStartSecond;
    bool mActive;
};

struct TriSectionSplitterView::Private {
    std::array<SectionPtr, 3> sections;
    std::array<MetadataSectionView::SectionViewChangedFxn, 3> sectionHandlers;
    SectionViewChangedFxn sectionChanged;
    SplitterChangedFxn splitterChanged;
    float fractions[2] = {0.5f, 0.5f};
    bool splitterAllowed = true;
};

TriSectionSplitterView::TriSectionSplitterView(kivui::UI_SubView *inParent, SectionPtr inTop, SectionPtr inMiddle,
                                               SectionPtr inBottom)
    : d(std::make_unique<Private>())
{
    UI_SetNodeID("TriSectionSplitterView");
    d->sections = {std::move(inTop), std::move(inMiddle), std::move(inBottom)};
    float const header = GetSectionHeaderHeight();
    for (std::size_t i = 0; i < d->sections.size(); ++i) {
        SectionPtr &section = d->sections[i];
        if (!section)
            section = SectionPtr(
                new MetadataSectionView(u"Section" + std::u16string(1, static_cast<char16_t>(u'0' + i)), true));
        section->SetHeaderHeight(header);
        // The view's handlers hold it weakly: the sections are its children.
        d->sectionHandlers[i] = std::make_shared<std::function<void(MetadataSectionView &)>>(
            [this](MetadataSectionView &changed) { OnSectionViewChanged(changed); });
        section->SetSectionViewChangedFxn(d->sectionHandlers[i]);
        ChildPushBack(section);
    }
    if (inParent) inParent->ChildPushBack(kivcore::utility::IntrusivePtr<kivui::UI_Node>(this));
    Layout();
}

TriSectionSplitterView::~TriSectionSplitterView()
{
    // Sections can outlive the view in their holders' hands.
    for (auto &handler : d->sectionHandlers) {
        if (handler) *handler = nullptr;
    }
}

int TriSectionSplitterView::GetSectionCount() const
{
    return kSectionCount;
}

int TriSectionSplitterView::GetSplitterCount() const
{
    return kSplitterCount;
}

float TriSectionSplitterView::GetSplitterHeight() const
{
    return kSplitterHeight;
}

float TriSectionSplitterView::GetSectionHeaderHeight() const
{
    return kivui::skins::IsRunningV7OrBeyond() ? kV7HeaderHeight : kivui::UI_SectionView::kDefaultHeaderHeight;
}

float TriSectionSplitterView::GetMinHeight() const
{
    return kivui::skins::IsRunningV7OrBeyond() ? kV7MinHeight
                                               : kivui::UI_SectionView::kDefaultHeaderHeight + kSplitterHeight;
}

TriSectionSplitterView::SectionPtr TriSectionSplitterView::GetSectionView(int inIndex) const
{
    switch (inIndex) {
    case 0:
    case 1:
        return d->sections[std::size_t(inIndex)];
    case 2:
        // The count is held at 2, so this fires every time; the bottom
        // section is still handed out.
        KIV_ASSERT(kUnit, "TriSectionSplitterView::GetSectionView", GetSectionCount() > 2);
        return d->sections[2];
    default:
        KIV_ASSERT(kUnit, "TriSectionSplitterView::GetSectionView", false);
        return {};
    }
}

float TriSectionSplitterView::GetSplitterPercentage(bool inFirst) const
{
    return d->fractions[inFirst ? 0 : 1];
}

void TriSectionSplitterView::SetSplitterPercentage(bool inFirst, float inValue)
{
    d->fractions[inFirst ? 0 : 1] = inValue;
    Layout();
    NotifySplitterChanged(inFirst);
}

bool TriSectionSplitterView::GetSplitterAllowed() const
{
    return d->splitterAllowed;
}

void TriSectionSplitterView::SetSplitterAllowed(bool inAllowed)
{
    d->splitterAllowed = inAllowed;
}

void TriSectionSplitterView::SetSectionPrimaryText(int inIndex, std::u16string const &inText)
{
    if (SectionPtr section = GetSectionView(inIndex)) section->SetPrimaryText(inText);
}

void TriSectionSplitterView::SetSectionSecondaryText(int inIndex, std::u16string const &inText)
{
    if (SectionPtr section = GetSectionView(inIndex)) section->SetSecondaryText(inText);
}

void TriSectionSplitterView::SetSectionImages(int inIndex, QImage const &inPrimaryImage, QImage const &inSecondaryImage)
{
    if (SectionPtr section = GetSectionView(inIndex)) section->SetImages(inPrimaryImage, inSecondaryImage);
}

void TriSectionSplitterView::SetSectionViewChangedFxn(SectionViewChangedFxn inFxn)
{
    d->sectionChanged = std::move(inFxn);
}

void TriSectionSplitterView::SetSplitterChangedFxn(SplitterChangedFxn inFxn)
{
    d->splitterChanged = std::move(inFxn);
}

bool TriSectionSplitterView::AreUpperSectionsOpened() const
{
    return d->sections[0]->IsOpened() && d->sections[1]->IsOpened();
}

float TriSectionSplitterView::AvailableFraction() const
{
    float available = 1.0f;
    if (!d->sections[0]->IsOpened()) available -= d->fractions[0];
    if (!d->sections[1]->IsOpened()) available -= d->fractions[1];
    return available;
}

float TriSectionSplitterView::ExpandableHeight() const
{
    float const h = UI_GetLocalRectF(false).height;
    float const header = GetSectionHeaderHeight();
    return std::max(h - kSplitterHeight - 2.0f * header, header + kSplitterHeight);
}

float TriSectionSplitterView::SectionHeight(int inIndex) const
{
    if (inIndex < 0 || inIndex > 2) return 0.0f;
    float const header = GetSectionHeaderHeight();
    float content = 0.0f;
    if (d->sections[std::size_t(inIndex)]->IsOpened()) {
        if (inIndex < 2) {
            float const available = AvailableFraction();
            content = available == 0.0f ? 0.0f : ExpandableHeight() * (d->fractions[inIndex] / available);
        } else {
            float const h = UI_GetLocalRectF(false).height;
            content =
                std::max(h, header + kSplitterHeight) - SectionHeight(0) - SectionHeight(1) - kSplitterHeight - header;
        }
    }
    return header + std::max(content, 0.0f);
}

float TriSectionSplitterView::SectionTop(int inIndex) const
{
    float top = UI_GetLocalRectF(false).y;
    for (int i = 1; i <= inIndex; ++i)
        top += SectionHeight(i - 1) + kSplitterHeight;
    return top;
}

RectF TriSectionSplitterView::SplitterRect(int inIndex) const
{
    RectF const bounds = UI_GetLocalRectF(false);
    // One unit up into the section above, so the hit area covers its edge.
    return RectF{bounds.x, SectionTop(inIndex) + SectionHeight(inIndex) - 1.0f, bounds.width, kSplitterHeight};
}

bool TriSectionSplitterView::IsSplitterActive(int inIndex) const
{
    return inIndex == 0 && AreUpperSectionsOpened();
}

void TriSectionSplitterView::Layout()
{
    RectF const bounds = UI_GetLocalRectF(false);
    // The header height follows the look, which may have changed since.
    float const header = GetSectionHeaderHeight();
    for (int i = 0; i < 3; ++i) {
        SectionPtr const &section = d->sections[std::size_t(i)];
        if (section->GetHeaderHeight() != header) section->SetHeaderHeight(header);
        RectF const rect{bounds.x, SectionTop(i), bounds.width, SectionHeight(i)};
        if (!(section->UI_GetLocalRectF(true) == rect)) section->UI_SetLocalRectF(rect);
    }
    UI_Invalidate();
}

void TriSectionSplitterView::SetFractions(float inFirst, float inSecond)
{
    d->fractions[0] = inFirst;
    d->fractions[1] = inSecond;
}

void TriSectionSplitterView::NotifySplitterChanged(bool inFirst)
{
    SplitterChangedFxn const fxn = d->splitterChanged;
    if (fxn && *fxn) (*fxn)(inFirst);
}

void TriSectionSplitterView::OnSectionViewChanged(MetadataSectionView &inSection)
{
    Layout();
    int index = -1;
    for (int i = 0; i < 3; ++i) {
        if (d->sections[std::size_t(i)].get() == &inSection) index = i;
    }
    SectionViewChangedFxn const fxn = d->sectionChanged;
    if (index >= 0 && fxn && *fxn) (*fxn)(index);
}

void TriSectionSplitterView::UI_SizeChanged(PointF const &oldSize)
{
    // The sections are placed by the geometry, not by layout bindings.
    Layout();
    (void)oldSize;
}

void TriSectionSplitterView::UI_Draw(kivui::drawbot::Drawbot &drawbot)
{
    QWidget const *widget = UI_GetWidget();
    QPalette const palette = widget ? widget->palette() : QPalette();
    RectF const bounds = UI_GetLocalRectF(false);
    drawbot.FillRect(bounds, palette.color(QPalette::Window));
    for (int i = 0; i < 2; ++i) {
        RectF const splitter = SplitterRect(i);
        // The part below the section above: that one unit is the section's own.
        RectF const gap{splitter.x, splitter.y + 1.0f, splitter.width, splitter.height - 1.0f};
        drawbot.FillRect(gap, palette.color(QPalette::Window));
        if (!IsSplitterActive(i) || !d->splitterAllowed) continue;
        // A short grip in the middle says the gap can be dragged.
        float const cx = std::floor(splitter.x + splitter.width * 0.5f);
        float const cy = std::floor(gap.y + gap.height * 0.5f) + 0.5f;
        for (float dx = -8.0f; dx <= 8.0f; dx += 4.0f) {
            drawbot.FillRect(RectF{cx + dx - 1.0f, cy - 1.0f, 2.0f, 2.0f}, palette.color(QPalette::Mid));
        }
    }
}

bool TriSectionSplitterView::UI_DoMouseEvent(kivui::MouseEvent const &event)
{
    if (event.type != kivui::MouseEvent::kDown || event.button != 1 || !event.onSelf) return false;
    if (!SplitterRect(0).Contains(event.local) || !AreUpperSectionsOpened() || !d->splitterAllowed) return false;
    kivcore::utility::IntrusivePtr<kivui::InputCapture> capture(
        new TriSectionSplitterViewCapture(this, event.local.y, d->fractions[0], d->fractions[1], IsSplitterActive(0)));
    kivui::UI_NodeManager::Get().BeginInputCapture(std::move(capture), this);
    return true;
}

bool TriSectionSplitterView::UI_DoCursor(PointF const &localPoint)
{
    if (!SplitterRect(0).Contains(localPoint) || !AreUpperSectionsOpened() || !d->splitterAllowed) return false;
    kivui::utility::OS_ResourceManager const *resources = module::GetResourceManager();
    if (!resources) return false;
    kivui::UI_NodeManager::Get().SetCursor(resources->GetCursor(kSplitterCursor, kSplitterCursorStyle));
    return true;
}

void TriSectionSplitterViewCapture::OnMouseMove(kivui::MouseEvent const &inEvent)
{
    TriSectionSplitterView &view = *mView;
    RectF const bounds = view.UI_GetLocalRectF(false);
    float const y = std::clamp(inEvent.local.y, bounds.y, bounds.y + bounds.height);
    float const dy = y - mLastY;
    float const expandable = view.ExpandableHeight();
    // Small moves add up until they pass one unit.
    if (std::fabs(dy) <= 1.0f || expandable == 0.0f) return;

    float const available = view.AvailableFraction();
    float const delta = (dy / expandable) * available;
    bool const firstOpened = view.d->sections[0]->IsOpened();
    bool const secondOpened = view.d->sections[1]->IsOpened();
    float p0 = view.d->fractions[0];
    float p1 = view.d->fractions[1];
    if (mActive) {
        p0 = std::clamp(p0 + delta, kMinFirstFraction, std::max(kMinFirstFraction, available));
        if (secondOpened) p1 = std::clamp(p1 - delta, 0.0f, std::max(0.0f, available));
    } else if (!secondOpened) {
        p0 = std::clamp(p0 + delta, 0.0f, std::max(0.0f, available));
    } else {
        p1 += delta;
        if (firstOpened && (p1 < 0.0f || p1 > available)) p0 = std::clamp(p0 + p1, 0.0f, std::max(0.0f, available));
        p1 = std::clamp(p1, 0.0f, std::max(0.0f, available));
    }
    if (firstOpened && secondOpened) {
        float const rest = 1.0f - p0 - p1;
        if (rest < 0.0f) {
            if (p0 <= p1)
                p1 += rest;
            else
                p0 += rest;
        }
    }
    mLastY = y;
    view.SetFractions(p0, p1);
    view.Layout();
    view.NotifySplitterChanged(mActive);
    view.UI_Invalidate();
}

} // namespace kivmetadataui

#include <kivmetadataui/MetadataViewCell.h>

#include <kivmetadataui/MetadataView.h>

#include <kivui/UI_Checkbox.h>
#include <kivui/drawbot/Drawbot.h>

#include <QColor>

#include <algorithm>
#include <cmath>

namespace kivmetadataui {

using kivcore::PointF;
using kivcore::RectF;
using kivcore::utility::IntrusivePtr;

namespace {

constexpr float kMargin = 2.0f;
constexpr float kGap = 6.0f;
constexpr float kLinkSize = 16.0f;
// A label keeps at least this much room however deep its row sits.
constexpr float kMinimumLabelWidth = 60.0f;

void Place(kivui::UI_Node *inNode, float inX, float inWidth, float inHeight, float inCellHeight)
{
    if (!inNode) return;
    float const y = std::floor((inCellHeight - inHeight) / 2.0f);
    inNode->UI_SetLocalRectF(RectF{inX, std::max(0.0f, y), std::max(0.0f, inWidth), inHeight});
}

} // namespace

struct MetadataViewCell::Private {
    ChildPtr mLabel;
    ChildPtr mValue;
    ChildPtr mLink;
    IntrusivePtr<kivui::UI_Checkbox> mCheckbox;
    float mLabelWidth = 165.0f;
    float mIndent = 0.0f;
    bool mSharedLabelWidth = true;
};

MetadataViewCell::MetadataViewCell() : d(std::make_unique<Private>())
{
    UI_SetNodeID("MetadataViewCell");
}

MetadataViewCell::~MetadataViewCell() = default;

void MetadataViewCell::Replace(ChildPtr &ioSlot, ChildPtr const &inNew)
{
    if (ioSlot == inNew) return;
    if (ioSlot && ioSlot->UI_GetParent() == this) ChildRemove(ioSlot.get());
    ioSlot = inNew;
    if (ioSlot) {
        if (ioSlot->UI_GetParent() != this) ChildPushBack(ioSlot);
        ioSlot->UI_Show(true);
    }
    UI_LayoutChildren();
}

void MetadataViewCell::SetChild_Label(ChildPtr const &inLabel)
{
    Replace(d->mLabel, inLabel);
}
MetadataViewCell::ChildPtr MetadataViewCell::GetChild_Label() const
{
    return d->mLabel;
}
void MetadataViewCell::SetChild_Value(ChildPtr const &inValue)
{
    Replace(d->mValue, inValue);
}
MetadataViewCell::ChildPtr MetadataViewCell::GetChild_Value() const
{
    return d->mValue;
}
void MetadataViewCell::SetChild_Link(ChildPtr const &inLink)
{
    Replace(d->mLink, inLink);
}
MetadataViewCell::ChildPtr MetadataViewCell::GetChild_Link() const
{
    return d->mLink;
}

void MetadataViewCell::SetChild_Checkbox(IntrusivePtr<kivui::UI_Checkbox> const &inCheckbox)
{
    ChildPtr slot = d->mCheckbox;
    Replace(slot, inCheckbox);
    d->mCheckbox = inCheckbox;
}

IntrusivePtr<kivui::UI_Checkbox> MetadataViewCell::GetChild_Checkbox() const
{
    return d->mCheckbox;
}

void MetadataViewCell::SetLabelWidth(float inWidth)
{
    d->mLabelWidth = std::max(0.0f, inWidth);
    d->mSharedLabelWidth = false;
    UI_LayoutChildren();
}

float MetadataViewCell::GetLabelWidth() const
{
    return d->mSharedLabelWidth ? MetadataView::GetSharedLabelWidth() : d->mLabelWidth;
}

void MetadataViewCell::SetUsesSharedLabelWidth(bool inShared)
{
    d->mSharedLabelWidth = inShared;
    UI_LayoutChildren();
}

bool MetadataViewCell::UsesSharedLabelWidth() const
{
    return d->mSharedLabelWidth;
}

void MetadataViewCell::SetIndent(float inIndent)
{
    d->mIndent = std::max(0.0f, inIndent);
    UI_LayoutChildren();
}

float MetadataViewCell::GetIndent() const
{
    return d->mIndent;
}

void MetadataViewCell::UI_LayoutChildren()
{
    RectF const bounds = UI_GetLocalRectF(false);
    float const height = bounds.height;
    float x = kMargin;
    if (d->mCheckbox) {
        float const size = kivui::UI_Checkbox::DefaultCheckSize();
        Place(d->mCheckbox.get(), x, size, size, height);
        x += size + kGap / 2;
    }
    float right = bounds.width - kMargin;
    if (d->mLink) {
        right -= kLinkSize;
        Place(d->mLink.get(), right, kLinkSize, kLinkSize, height);
        right -= kGap;
    }
    float labelEnd = right;
    if (d->mValue) labelEnd = std::max(x + kMinimumLabelWidth, GetLabelWidth() - d->mIndent);
    if (d->mLabel) Place(d->mLabel.get(), x, std::min(labelEnd, right) - x, std::max(0.0f, height - 2.0f), height);
    if (d->mValue) {
        float const valueX = labelEnd + kGap;
        Place(d->mValue.get(), valueX, right - valueX, std::max(0.0f, height - 2.0f), height);
    }
}

void MetadataViewCell::UI_SizeChanged(PointF const &inOldSize)
{
    (void)inOldSize;
    UI_LayoutChildren();
}

void MetadataViewCell::UI_Draw(kivui::drawbot::Drawbot &inDrawbot)
{
    // A hairline under each property row keeps long lists readable.
    if (!d->mValue) return;
    RectF const bounds = UI_GetLocalRectF(false);
    float const y = bounds.height - 0.5f;
    inDrawbot.DrawLine(PointF{0.0f, y}, PointF{bounds.width, y}, QColor(128, 128, 128, 40));
}

bool MetadataViewCell::UI_DoCursor(PointF const &inLocalPoint)
{
    (void)inLocalPoint;
    return false;
}

bool MetadataViewCell::UI_DoMouseEvent(kivui::MouseEvent const &inEvent)
{
    if (inEvent.type != kivui::MouseEvent::kDown || inEvent.button != 1 || !inEvent.onSelf || !d->mValue) return false;
    if (!d->mValue->UI_IsEnabled()) return false;
    d->mValue->UI_SetFocus();
    return true;
}

} // namespace kivmetadataui

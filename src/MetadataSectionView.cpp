#include <kivmetadataui/MetadataSectionView.h>

#include <kivcore/StringUtils.h>
#include <kivui/drawbot/Drawbot.h>

#include <QPalette>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace kivmetadataui {

using kivcore::PointF;
using kivcore::RectF;

namespace {

constexpr float kPadding = 4.0f;
constexpr float kImageGap = 4.0f;
constexpr float kImageMaxSide = 16.0f;

// The image's size scaled down to fit the header, never up.
PointF FittedImageSize(QImage const &inImage, float inHeaderHeight)
{
    if (inImage.isNull()) return {};
    float const side = std::min(kImageMaxSide, std::max(0.0f, inHeaderHeight - 2.0f * 2.0f));
    float const w = float(inImage.width() / inImage.devicePixelRatio());
    float const h = float(inImage.height() / inImage.devicePixelRatio());
    float const scale = std::min(1.0f, std::min(side / std::max(1.0f, w), side / std::max(1.0f, h)));
    return PointF{std::floor(w * scale), std::floor(h * scale)};
}

} // namespace

struct MetadataSectionView::Private {
    std::u16string name;
    std::u16string primaryText;
    std::u16string secondaryText;
    QImage primaryImage;
    QImage secondaryImage;
    SectionViewChangedFxn changed;
};

MetadataSectionView::MetadataSectionView(std::u16string inName, bool inOpened) : d(std::make_unique<Private>())
{
    d->name = std::move(inName);
    UI_SetNodeID(kivcore::utility::Utf16ToUtf8(d->name));
    // The base starts opened; only a change goes through DoSetOpened.
    if (!inOpened) SetOpened(false);
}

MetadataSectionView::~MetadataSectionView() = default;

std::u16string const &MetadataSectionView::GetName() const
{
    return d->name;
}

void MetadataSectionView::SetPrimaryText(std::u16string inText)
{
    d->primaryText = std::move(inText);
    UI_Invalidate();
}

std::u16string const &MetadataSectionView::GetPrimaryText() const
{
    return d->primaryText;
}

void MetadataSectionView::SetSecondaryText(std::u16string inText)
{
    d->secondaryText = std::move(inText);
    UI_Invalidate();
}

std::u16string const &MetadataSectionView::GetSecondaryText() const
{
    return d->secondaryText;
}

void MetadataSectionView::SetImages(QImage inPrimaryImage, QImage inSecondaryImage)
{
    d->primaryImage = std::move(inPrimaryImage);
    d->secondaryImage = std::move(inSecondaryImage);
    UI_Invalidate();
}

QImage const &MetadataSectionView::GetPrimaryImage() const
{
    return d->primaryImage;
}

QImage const &MetadataSectionView::GetSecondaryImage() const
{
    return d->secondaryImage;
}

void MetadataSectionView::SetSectionViewChangedFxn(SectionViewChangedFxn inFxn)
{
    d->changed = std::move(inFxn);
}

void MetadataSectionView::DoSetOpened(bool inOpened)
{
    kivui::UI_SectionView::DoSetOpened(inOpened);
    NotifySectionViewChanged();
}

void MetadataSectionView::NotifySectionViewChanged()
{
    // A copy: the function may replace itself.
    SectionViewChangedFxn const fxn = d->changed;
    if (fxn && *fxn) (*fxn)(*this);
}

void MetadataSectionView::AlignDisclosureButtonRect(RectF &ioRect) const
{
    // Centred in the header, offsets rounded down.
    ioRect.x = kPadding;
    ioRect.y = std::floor((GetHeaderHeight() - ioRect.height) * 0.5f);
}

void MetadataSectionView::UI_SizeChanged(PointF const &oldSize)
{
    kivui::UI_SectionView::UI_SizeChanged(oldSize);
    UI_Invalidate();
}

void MetadataSectionView::UI_Draw(kivui::drawbot::Drawbot &drawbot)
{
    // Background, separator line, disclosure triangle.
    kivui::UI_SectionView::UI_Draw(drawbot);
    RectF const header = GetHeaderRect();
    if (header.IsEmpty()) return;

    // The base's own header text stays empty: the texts and images here replace it.
    QWidget const *widget = UI_GetWidget();
    QPalette const palette = widget ? widget->palette() : QPalette();
    QColor const secondaryColor = palette.color(QPalette::Disabled, QPalette::ButtonText);

    RectF const tri = GetDisclosureRect();
    float left = tri.Right() + kPadding + 2.0f;
    float right = header.Right() - kPadding - 2.0f;

    // The secondary text sits right-aligned, its image before it.
    if (!d->secondaryText.empty()) {
        float const textWidth = std::ceil(drawbot.MeasureText(d->secondaryText).x);
        float const maxWidth = std::max(0.0f, (right - left) * 0.5f);
        float const width = std::min(textWidth, maxWidth);
        drawbot.DrawText(d->secondaryText, RectF{right - width, header.y, width, header.height},
                         kivui::drawbot::Drawbot::kAlignRight, 0.0f, {}, secondaryColor);
        right -= width + kImageGap;
    }
    PointF const secondarySize = FittedImageSize(d->secondaryImage, header.height);
    if (secondarySize.x > 0.0f && right - secondarySize.x > left) {
        float const top = header.y + std::floor((header.height - secondarySize.y) * 0.5f);
        drawbot.DrawImage(d->secondaryImage, RectF{right - secondarySize.x, top, secondarySize.x, secondarySize.y});
        right -= secondarySize.x + kImageGap;
    }

    PointF const primarySize = FittedImageSize(d->primaryImage, header.height);
    if (primarySize.x > 0.0f && left + primarySize.x < right) {
        float const top = header.y + std::floor((header.height - primarySize.y) * 0.5f);
        drawbot.DrawImage(d->primaryImage, RectF{left, top, primarySize.x, primarySize.y});
        left += primarySize.x + kImageGap;
    }
    if (!d->primaryText.empty() && right > left) {
        drawbot.DrawText(d->primaryText, RectF{left, header.y, right - left, header.height},
                         kivui::drawbot::Drawbot::kAlignLeft, 0.0f, "Bold");
    }
}

} // namespace kivmetadataui

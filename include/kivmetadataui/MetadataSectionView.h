#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_SectionView.h>

#include <QImage>

#include <functional>
#include <memory>
#include <string>

namespace kivmetadataui {

// A collapsible section whose header shows the disclosure triangle, an
// image and a primary text on the left, and a secondary text with its image
// on the right. Opening or closing it is reported to the section-changed
// function with the section itself.
class KIVMETADATAUI_EXPORT MetadataSectionView : public kivui::UI_SectionView {
public:
    using SectionViewChangedFxn = std::shared_ptr<std::function<void(MetadataSectionView &)>>;

    // inName identifies the section (its node identifier too); inOpened is
    // the state it starts in.
    MetadataSectionView(std::u16string inName, bool inOpened);

    std::u16string const &GetName() const;

    void SetPrimaryText(std::u16string inText);
    std::u16string const &GetPrimaryText() const;
    void SetSecondaryText(std::u16string inText);
    std::u16string const &GetSecondaryText() const;
    // Either may be null: the primary image goes before the primary text,
    // the secondary image before the secondary text.
    void SetImages(QImage inPrimaryImage, QImage inSecondaryImage);
    QImage const &GetPrimaryImage() const;
    QImage const &GetSecondaryImage() const;

    // Released (or emptied) functions are no longer called.
    void SetSectionViewChangedFxn(SectionViewChangedFxn inFxn);

protected:
    ~MetadataSectionView() override;

    void DoSetOpened(bool inOpened) override;
    void NotifySectionViewChanged();
    void AlignDisclosureButtonRect(kivcore::RectF &ioRect) const override;
    void UI_Draw(kivui::drawbot::Drawbot &drawbot) override;
    void UI_SizeChanged(kivcore::PointF const &oldSize) override;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

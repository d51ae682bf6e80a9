#pragma once
// Internal to kivmetadataui: not part of the installed API (exported only so
// that the library's own tests can reach it).

#include "kivmetadataui_test_export_p.h"

#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/ViewBuilderInterface.h>

#include <kivcore/Flags.h>

#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {
class MetaDataProvider;
}

namespace kivui {
class UI_StaticText;
}

namespace kivui::drawbot {
class SupplierInterface;
}

namespace kivmetadataui::layout {

// Rows go into the scroll view's content view; the content size becomes the
// scroll view's content rectangle.
class KIVMETADATAUI_TEST_EXPORT ScrollViewLayoutDelegate : public TableLayoutDelegate {
public:
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> GetContainerView(TableLayout &inTable) override;
    void SetContentSize(TableLayout &inTable, kivcore::PointF const &inSize) override;
};

// Rows go into the section's content view; the section takes the frame that
// fits the content (the header alone while it is closed).
class KIVMETADATAUI_TEST_EXPORT SectionViewLayoutDelegate : public TableLayoutDelegate {
public:
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> GetContainerView(TableLayout &inTable) override;
    void SetContentSize(TableLayout &inTable, kivcore::PointF const &inSize) override;
};

// Turns the items of a view definition into the rows of one table inside a
// scroll view: a row per property (label, bound control), a collapsible
// nested table per section, a nested table per struct and an array editor
// per array. Measures label widths and lays the table out when the view ends.
class KIVMETADATAUI_TEST_EXPORT MetadataViewBuilder : public kivmetadata::ViewBuilderInterface {
public:
    static constexpr float kMinimumWidth = 400.0f;
    static constexpr char kLabelWithColon[] = "$$$/metadataui/format/LabelWithColon=@0:";
    static constexpr char kDefaultSeparator[] = "$$$/metadataui/view/separator/default=;";

    MetadataViewBuilder(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider,
                        kivui::drawbot::SupplierInterface const *inSupplier);
    ~MetadataViewBuilder() override;

    // Never below kMinimumWidth.
    void SetWidth(float inWidth);
    float GetWidth() const { return mWidth; }
    void SetMargins(kivcore::Flags<unsigned char> inMask);

    std::shared_ptr<TableLayout> const &GetTableLayout() const { return mTableLayout; }

    void BeginView(kivmetadata::ViewDefinition const &inDefinition) override;
    void EndView() override;
    void BeginSection(kivmetadata::ViewItem const &inSection) override;
    void EndSection() override;
    void AddProperty(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                     kivmetadata::PropertyDefinition const &inDefinition) override;
    void BeginStruct(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                     kivmetadata::PropertyDefinition const &inDefinition) override;
    void EndStruct() override;
    void AddArray(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                  kivmetadata::PropertyDefinition const &inDefinition) override;

    // The label-column width of an item measured with inSupplier, rounded up.
    static float MeasureItem(kivui::drawbot::SupplierInterface const *inSupplier, LayoutItem const &inItem);
    // "Label:" for a label key (or plain text).
    static std::u16string LabelText(std::string const &inLabel);
    // Places a label of natural size inNatural beside inContent (may be
    // null): centred on the content's first line, wrapped when too wide.
    static LayoutItem::LayoutFunction LabelLayoutFunction(kivui::UI_StaticText *inLabel, kivcore::PointF inNatural,
                                                          kivcore::utility::IntrusivePtr<kivui::UI_SubView> inContent);
    // The localised element separator with a trailing blank.
    static std::u16string SeparatorText();

private:
    struct Level {
        std::shared_ptr<TableLayout> mTable;
        std::shared_ptr<RowItem> mRow; // the struct's row, inserted when the struct ends
    };

    TableLayout &CurrentTable();
    // The label of a row; inContent is the control beside it, if any.
    std::shared_ptr<LayoutItem> MakeLabel(std::string const &inLabel,
                                          kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &inContent) const;
    void MeasureAndLayout();

    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    kivui::drawbot::SupplierInterface const *mSupplier;
    float mWidth = kMinimumWidth;
    std::shared_ptr<TableLayout> mTableLayout;
    std::vector<Level> mStack;
};

} // namespace kivmetadataui::layout

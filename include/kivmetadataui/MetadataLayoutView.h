#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/Flags.h>
#include <kivui/UI_SubView.h>

#include <memory>
#include <string>

namespace kivmetadata {
class MetaDataProvider;
struct ViewDefinition;
} // namespace kivmetadata

namespace kivmetadataui {

namespace layout {
class TableLayout;
}

// A panel that shows one view definition for one metadata provider: label
// and control rows in a scroll view, sections collapsible, or a "No Data"
// text when the definition yields no rows. The content is built afresh on
// every Layout (values are read again from the provider each time). Call
// Layout once the panel sits in a window (it needs a drawing supplier), and
// Refresh whenever the definition or the metadata changed from outside.
class KIVMETADATAUI_EXPORT MetadataLayoutView : public kivui::UI_SubView {
public:
    static constexpr char kNodeID[] = "MetadataLayoutView";
    static constexpr char kNoDataKey[] = "$$$/kivmetadataui/MetadataLayoutView/NoData=No Data";

    // Looks the definition up with kivmetadata::GetViewDefinitionForName.
    MetadataLayoutView(std::string const &inViewName, std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);
    MetadataLayoutView(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition,
                       std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);

    // The definition's name; empty without a definition.
    std::string GetViewName() const;
    // The definition's display name, localised; empty without a definition.
    std::string GetDisplayName() const;

    // A null definition is ignored; otherwise the panel is rebuilt at once.
    void SetViewDefinition(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition);
    // An empty or unknown name changes nothing.
    void SetViewDefinitionByName(std::string const &inName);
    std::shared_ptr<kivmetadata::ViewDefinition> const &GetViewDefinition() const;
    std::shared_ptr<kivmetadata::MetaDataProvider> const &GetMetadataProvider() const;

    // Margin mask of the panel's table (1 left, 2 top, 4 right, 8 bottom);
    // takes effect at the next layout.
    void SetMargins(kivcore::Flags<unsigned char> inMargins);
    kivcore::Flags<unsigned char> GetMargins() const;

    // The table built by the last layout; empty before it and after Refresh.
    std::shared_ptr<layout::TableLayout> const &GetTableLayout() const;

    // The width the view builder works in: 500 less the scroll bar and 26,
    // never less than 400.
    static float BuilderWidth();

    // Drops the content and lays out again.
    virtual void Refresh();
    // Rebuilds the whole content; does nothing without a drawing supplier.
    virtual void Layout();

protected:
    ~MetadataLayoutView() override;

    virtual void Initialize();
    // Tab and Shift-Tab keep the newly focused control in sight.
    bool UI_DoKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent) override;
    void UI_LayoutChildren() override;
    void UI_NodeChanged() override;
    void UI_SizeChanged(kivcore::PointF const &inOldSize) override;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

// Options of the raw-data panel.
struct RawDataViewOptions {
    // Show the "Raw Data" caption above the text.
    bool mShowLabel = true;
    // Break long lines at the panel's width instead of scrolling sideways.
    bool mWrapLines = false;
};

// The raw-data panel: the provider's XMP packet as RDF/XML in a read-only,
// selectable multi-line text, or a notice when the packet is larger than
// 1,000,000 bytes. A null definition gets one named "RawData". The text
// follows later changes of the provider.
KIVMETADATAUI_EXPORT kivcore::utility::IntrusivePtr<MetadataLayoutView>
CreateRawDataView(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition,
                  std::shared_ptr<kivmetadata::MetaDataProvider> inProvider, RawDataViewOptions inOptions = {});

} // namespace kivmetadataui

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <QWidget>

#include <memory>
#include <string>

namespace kivmetadata {
class MetaDataProvider;
} // namespace kivmetadata

namespace kivmetadataui {

class MetadataLayoutView;
class MetadataView;

// The metadata of one provider as an ordinary QWidget, for a host's own
// window: a named panel, the tree of all schemas or the raw-data view,
// resizing with the host's layouts. Edits go to the provider as they are made (saving stays the
// host's, through the provider). Keeps the library initialised while it
// lives. By default it follows the host's palette and style; SetLook(kToolkit)
// gives its fields the toolkit's skins instead (as kivmeta shows them).
class KIVMETADATAUI_EXPORT MetadataWidget : public QWidget {
    Q_OBJECT

public:
    enum class Look {
        kHost,    // the host's palette and style, nothing of the toolkit's skins
        kToolkit, // the skins of the toolkit's look in use
    };

    explicit MetadataWidget(QWidget *inParent = nullptr);
    // Shows the panel of that name for the provider.
    MetadataWidget(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider, std::string const &inPanelName,
                   QWidget *inParent = nullptr);
    ~MetadataWidget() override;

    MetadataWidget(MetadataWidget const &) = delete;
    MetadataWidget &operator=(MetadataWidget const &) = delete;

    // Where values are read from and edits go; what is shown is rebuilt for it.
    void SetProvider(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);
    std::shared_ptr<kivmetadata::MetaDataProvider> const &GetProvider() const;

    // Shows the panel of that name (kivmetadata::GetViewDefinitions() lists
    // them: "Description", "CameraData", ...); false, and nothing changed,
    // for an unknown name.
    bool ShowPanel(std::string const &inPanelName);
    // Shows the provider's packet as RDF/XML, read-only; it follows changes
    // of the provider.
    void ShowRawData();
    // Shows every property of every known schema in a tree, each with its
    // value control.
    void ShowTree();
    // The name of what is shown: a panel's name, "RawData", "Tree", or empty.
    std::string GetShownName() const;

    // Reads the provider again (after it changed outside the widget).
    void Refresh();

    void SetLook(Look inLook);
    Look GetLook() const;

    // The toolkit view inside, for hosts that want more of its interface:
    // the panel (or raw-data view), or the tree; null when another is shown.
    MetadataLayoutView *GetLayoutView() const;
    MetadataView *GetTreeView() const;

    // Wide enough for labels and fields side by side.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent *inEvent) override;
    void changeEvent(QEvent *inEvent) override;

private:
    enum class Kind { kPanel, kRawData, kTree };
    void Show(std::string const &inName, Kind inKind);
    void ApplyLook();

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

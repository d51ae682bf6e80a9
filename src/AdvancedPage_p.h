#pragma once
// Internal to kivmetadataui: the "Advanced" page of the main metadata
// dialog. Not API.

#include "kivmetadataui_test_export_p.h"

#include <QString>
#include <QWidget>

#include <memory>

class QLineEdit;
class QPushButton;

namespace kivmetadata {
class MetaDataProvider;
}

namespace kivmetadataui {

class MetadataView;

// Every property of the edited provider in one tree: all known schemas plus
// the namespaces of the packet that no definition knows, each property
// editable where it may be written. A search field above the tree filters
// it (rapid find); "View Settings..." below it chooses which properties the
// tree shows, and that choice is kept as the current view setting for the
// next run.
class KIVMETADATAUI_TEST_EXPORT AdvancedPage : public QWidget {
public:
    // The preference holding the chosen properties (a view-settings text).
    static constexpr char kSelectionPrefKey[] = "MetadataView/AdvancedPage/currentViewSetting";
    static constexpr char kSearchPlaceholderKey[] = "$$$/kivmetadataui/MetadataView/SearchPlaceholder=Search";
    static constexpr char kViewSettingsKey[] = "$$$/kivmetadataui/MetadataView/ViewSettingsButton=View Settings...";

    explicit AdvancedPage(std::shared_ptr<kivmetadata::MetaDataProvider> inEdited, QWidget *inParent = nullptr);
    ~AdvancedPage() override;

    // Shows the text in the search field and filters the tree by it.
    void SetSearchText(QString const &inText);
    MetadataView *View() const;
    // Shows the provider's values again (after edits made elsewhere).
    void RefreshValues();

    QLineEdit *SearchField() const;
    QPushButton *ViewSettingsButton() const;
    // Runs the view-settings dialog; on OK the tree shows the new choice and
    // it is kept for the next run. True when the user chose OK.
    bool EditViewSettings();

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

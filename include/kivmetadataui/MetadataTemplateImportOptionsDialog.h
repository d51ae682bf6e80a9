#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_ArchivedDialog.h>

#include <memory>

namespace kivmetadata {
enum TemplateImportOptions : int;
}

namespace kivui {
class UI_RadioGroup;
namespace utility {
class PrefManager;
}
} // namespace kivui

namespace kivmetadataui {

// Asks how an imported template is merged with the properties already
// there: clear and replace, keep and replace, keep and append. The chosen
// radio index is remembered under kSettingsKey when the dialog closes, by
// OK and by Cancel alike, so the next import offers it again.
class KIVMETADATAUI_EXPORT MetadataTemplateImportOptionsDialog : public kivui::UI_ArchivedDialog {
public:
    static constexpr char kNodeID[] = "MetadataTemplateImportOptionsDialog";
    static constexpr char kArchiveName[] = "MetadataTemplateImportOptionsDialog";
    static constexpr char kSettingsKey[] = "templateImportOptions";
    static constexpr char kTitleKey[] = "$$$/kivmetadataui/dialog/import/template/title=Import Options";
    static constexpr char kOptionsGroupID[] = "optionsGroupID";
    static constexpr char kOkCancelGroupID[] = "okCancelGroupID";
    static constexpr char kOkButtonID[] = "okButtonID";
    static constexpr char kCancelButtonID[] = "cancelButtonID";

    // inResources reads the dialog's UI archive; null takes the library's
    // own resources. inSettings may be null: the dialog then remembers nothing.
    // The process-wide store can be passed without ownership:
    //   std::shared_ptr<PrefManager>(std::shared_ptr<void>(), PrefManager::GetPrefManager())
    MetadataTemplateImportOptionsDialog(kivui::drawbot::SupplierInterface *inSupplier,
                                        kivui::utility::ResourceManager const *inResources,
                                        std::shared_ptr<kivui::utility::PrefManager> inSettings,
                                        kivui::UI_Node *inParent = nullptr);

    // The option of the selected radio index.
    kivmetadata::TemplateImportOptions GetOptions() const;
    // 0 clear and replace, 1 keep and replace, any other index keep and append.
    static kivmetadata::TemplateImportOptions OptionsForIndex(int inIndex);

    kivui::UI_RadioGroup *GetOptionsGroup() const;

    void DefaultCloseOk() override;
    void DefaultCloseCancel() override;

protected:
    ~MetadataTemplateImportOptionsDialog() override;

private:
    void StoreSelection() const;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

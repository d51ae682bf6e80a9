#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_ArchivedDialog.h>

#include <functional>
#include <memory>
#include <string>

namespace kivmetadata::utility {
enum GXVersion : int;
}

namespace kivui {
class UI_Popup;
class UI_TextButton;
class UI_TextEdit;
} // namespace kivui

namespace kivmetadataui::sharedui {

// Converts the custom panels of an older suite version ("Generic Panels")
// into the current panel format: the user picks the version, presses Start
// and reads the conversion's report. The window rectangle is kept in the
// preference store under kNodeID.
class KIVMETADATAUI_EXPORT PanelConversionDialog : public kivui::UI_ArchivedDialog {
public:
    static constexpr char kNodeID[] = "PanelConversionDialog";
    static constexpr char kArchiveName[] = "PanelConversionDialog";
    static constexpr char kTitle[] = "Generic Panel Converter";
    static constexpr char kVersionPopupID[] = "versionPopupID";
    static constexpr char kStartButtonID[] = "startButtonID";
    static constexpr char kExitButtonID[] = "exitButtonID";
    static constexpr char kResultTextID[] = "resultTextID";

    // Converts the panels of a version and fills the report; true when no
    // file failed.
    using Converter = std::function<bool(kivmetadata::utility::GXVersion, std::u16string &)>;

    PanelConversionDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent = nullptr);

    // The version converted for a popup value: 2 gives GX6, 3 GX5, any
    // other GX4 (value 0, "Select Version...", converts nothing).
    static kivmetadata::utility::GXVersion VersionForPopupValue(int inValue);
    // Replaces the conversion (by default the metadata model's); an empty
    // function restores the default. Returns the previous one.
    static Converter SetConverter(Converter inConverter);

    kivui::UI_Popup *GetVersionPopup() const;
    kivui::UI_TextButton *GetStartButton() const;
    kivui::UI_TextEdit *GetResultText() const;

    // Start is enabled for any version but "Select Version...".
    void OnVersionChanged();
    // Converts the chosen version and shows the report, replacing the last.
    void OnStartClicked();

    void DefaultCloseOk() override;
    void DefaultCloseCancel() override;

protected:
    ~PanelConversionDialog() override;

private:
    void StoreWindowRect() const;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui::sharedui

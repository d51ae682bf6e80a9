#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_ArchivedDialog.h>
#include <kivui/UI_MultiColumnTreeRow.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {
struct ErrorInfo;
}

namespace kivmetadataui {

// Lists the errors that the metadata model collected (description and
// context, one row each, in the model's order) with an OK button and a link
// line to a web page about XMP. The rows keep their own copies of the texts,
// so later changes of the model's list do not show. The window rectangle is
// kept in the preference store under kNodeID. The caller shows the dialog
// (Show or RunModal) and releases it when it has closed.
class KIVMETADATAUI_EXPORT MetadataErrorDialog : public kivui::UI_ArchivedDialog {
public:
    static constexpr char kNodeID[] = "MetadataErrorDialog";
    static constexpr char kArchiveName[] = "MetadataErrorDialog";
    static constexpr char kTitleKey[] = "$$$/kivmetadataui/dialog/error/title=Error Information";
    static constexpr char kColumn0Key[] = "$$$/kivmetadataui/dialog/error/list/column0=Description";
    static constexpr char kColumn1Key[] = "$$$/kivmetadataui/dialog/error/list/column1=Context";
    static constexpr char kOkButtonID[] = "okButtonID";
    static constexpr char kErrorListID[] = "errorListID";
    static constexpr char kErrorLinkID[] = "errorLinkID";
    static constexpr char kErrorLinkLabelID[] = "errorLinkLabelID";
    static constexpr float kMinimumWidth = 600.0f;
    static constexpr float kMinimumHeight = 280.0f;
    static constexpr float kColumn0Width = 200.0f;
    static constexpr float kColumn1Width = 20.0f;

    // Opens an address in the desktop's default application; true when it
    // could be handed over.
    using LinkOpener = std::function<bool(std::u16string const &)>;

    // inResizable: the user may resize the window (the metadata dialog
    // passes true). A UI archive without the list or the link raises the
    // null-pointer exception naming the control type.
    MetadataErrorDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent, bool inResizable);
    // Lists inErrors instead of the model's list (errors a host collected itself).
    MetadataErrorDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent, bool inResizable,
                        std::vector<kivmetadata::ErrorInfo> const &inErrors);

    // The address of the web page about XMP that the link shows and opens.
    static std::u16string GetLinkAddress();
    // Replaces how addresses are opened (by default in the desktop's default
    // application); an empty function restores the default. Returns the
    // previous opener.
    static LinkOpener SetLinkOpener(LinkOpener inOpener);

    // Number of listed errors, and the texts a row draws.
    int CountErrors() const;
    std::u16string GetRowDescription(int inRow) const;
    std::u16string GetRowContext(int inRow) const;

    // The list's cell drawing: the description in column 0, the context in
    // column 1.
    void DrawCell(kivui::drawbot::Drawbot &inDrawbot, kivui::UI_MultiColumnTreeRow::IntrusivePtr const &inRow,
                  int inColumn, kivcore::RectF const &inRect) const;
    // Opens the link's address.
    void OnLinkClicked();

    // Both keep the window rectangle for the next opening.
    void DefaultCloseOk() override;
    void DefaultCloseCancel() override;

protected:
    ~MetadataErrorDialog() override;

private:
    void SetUp(std::vector<kivmetadata::ErrorInfo> const &inErrors, bool inResizable);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

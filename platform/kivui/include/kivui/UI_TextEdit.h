#pragma once

#include <kivui/UI_InteractiveControlView.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class QLineEdit;
class QPlainTextEdit;

namespace kivui {

// Editable text over QLineEdit (one line) or QPlainTextEdit (several lines).
//
// Interactive messages: 0 when the user starts editing (focus enters the
// field), 1 on every change the user types, 2 when the edit is committed
// (Return in a one-line edit, or focus leaving). A commit whose text
// ValidateText refuses shows the warning in a message box, keeps the typed
// text and the editing state, and sends nothing. NotifyWhenChanged listeners
// hear of each committed change of the value.
class KIVUI_EXPORT UI_TextEdit : public UI_InteractiveControlView {
public:
    UI_TextEdit();

    std::u16string GetValue() const;
    // Replaces the text and makes the value known; with inNotify the
    // NotifyWhenChanged listeners hear of it.
    void SetValue(std::u16string const &inText, bool inNotify = true);

    // Shown as a grey placeholder while the text is empty (typically
    // "<Multiple Values>").
    std::u16string const &GetUnknownStateText() const;
    void SetUnknownStateText(std::u16string const &inText);
    // The unknown state empties the text; the placeholder shows instead.
    void SetValueUnknown(bool inUnknown) override;

    // Read-only text stays selectable and copyable.
    void SetReadOnlyMode(bool inReadOnly);
    bool IsReadOnlyMode() const;

    void SelectAll();
    bool IsEditing() const;

    // Flags of the host's edit-text behaviour; kept for the host, no effect
    // here beyond storage.
    void SetEditTextFlags(std::uint32_t inFlags);
    std::uint32_t GetEditTextFlags() const;
    // When false, committing an empty text restores the previous value.
    void SetAllowEmpty(bool inAllow);
    bool GetAllowEmpty() const;
    void SetMaxLength(int inLength);

    // A warning text refuses inText as the committed value.
    virtual std::optional<std::u16string> ValidateText(std::u16string const &inText) const;

    // Shows the warning of a refused commit, for every text edit of the
    // process. The toolkit's dialogs install a stop alert when the library
    // loads; with none installed the commit is refused silently.
    using ValidationWarningPresenter = std::function<void(UI_TextEdit &inEdit, std::u16string const &inWarning)>;
    static void SetValidationWarningPresenter(ValidationWarningPresenter inPresenter);

    kivcore::PointF GetPreferredSize(drawbot::Drawbot const *inDrawbot) const override;

    // The Qt editor (exactly one of them is non-null).
    QLineEdit *GetLineEdit() const;
    QPlainTextEdit *GetPlainTextEdit() const;

    // Ends editing as if focus had left; false when validation refused it.
    bool CommitEditing();

protected:
    enum class EditorKind { kSingleLine, kMultiLine };
    // inFrame, when given, becomes the node's widget and the editor is made
    // inside it (the subclass places it); otherwise the editor is the node's
    // widget.
    UI_TextEdit(EditorKind inKind, QWidget *inFrame);
    ~UI_TextEdit() override;

    QWidget *GetEditorWidget() const;
    void UpdateEnabledState() override;
    // Shows a refused commit's warning through the installed presenter;
    // tests of subclasses may rely on the toolkit's scripted message-box
    // responses.
    virtual void ShowValidationWarning(std::u16string const &inWarning);

private:
    friend class TextEditWatcher;
    void BeginEditing();
    void UserEdited();
    void ApplyPlaceholder();

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui

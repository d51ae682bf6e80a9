#pragma once

#include <kivui/DialogText.h>
#include <kivui/UI_SubView.h>

#include <memory>

class QDialog;

namespace kivui {

// A dialog window: a sub-view whose widget is a QDialog. OK and Cancel
// buttons (any nodes whose widgets are buttons) are declared with SetButtons;
// pressing them, Return, Escape or closing the window calls DefaultCloseOk or
// DefaultCloseCancel, which derived dialogs override to check or store
// before they call the base. Modal runs are answered by
// dialogs::ScriptedResponses in tests.
class KIVUI_EXPORT UI_Dialog : public UI_SubView {
public:
    enum class Result { kNone, kOk, kCancel };

    UI_Dialog(drawbot::SupplierInterface *inSupplier, dialogs::DialogText const &inTitle, UI_Node *inParent = nullptr);

    void SetTitle(dialogs::DialogText const &inTitle);
    std::u16string GetTitle() const;

    // Either may be null. The OK button becomes the default button.
    void SetButtons(UI_Node *inOkButton, UI_Node *inCancelButton);
    UI_Node *GetOkButton() const;
    UI_Node *GetCancelButton() const;

    // Runs the dialog modally; true when it was closed with OK.
    bool RunModal();
    // Shows the dialog without blocking.
    void Show();
    bool IsOpen() const;
    Result GetResult() const;

    virtual void DefaultCloseOk();
    virtual void DefaultCloseCancel();

    // The window cannot be made smaller than this (UI units).
    void SetMinimumSize(kivcore::PointF const &inSize);
    kivcore::PointF GetMinimumSize() const;
    void SetResizable(bool inResizable);

    // Restores the window rectangle saved under the node identifier in the
    // preference store; without a store, a saved rectangle or when the saved
    // size is below 1 by 1, the window gets `inDefaultSize` (when given) at
    // its current place. True when a saved rectangle was applied.
    bool RestoreWindowPositionAndSize(kivcore::PointF const &inDefaultSize = {});
    // Saves the window rectangle under the node identifier (needs a store and an identifier).
    void SaveWindowPositionAndSize() const;

    QDialog *GetDialog() const;

protected:
    ~UI_Dialog() override;
    // Closes the window with the result; used by the DefaultClose* defaults.
    void CloseWithResult(Result inResult);
    // Called once the window is shown for a run (default focus, for example).
    virtual void DialogShown();

private:
    struct Private;
    std::unique_ptr<Private> const d;
    friend class DialogWidget;
};

} // namespace kivui

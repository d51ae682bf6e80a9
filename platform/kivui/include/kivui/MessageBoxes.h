#pragma once

#include <kivui/DialogText.h>
#include <kivui/kivui_export.h>

#include <string>

namespace kivui {
class UI_Node;
namespace drawbot {
class SupplierInterface;
}
} // namespace kivui

namespace kivui::dialogs {

// Modal boxes for simple questions. Texts may be localisation keys; '&' in a
// button text marks its mnemonic. The parent (any node of the window that
// asks) may be null. Each is answered by ScriptedResponses in tests.

// Asks for one line of text; `text` is the initial text and, on OK, the
// answer. True when closed with OK.
KIVUI_EXPORT bool SimpleInputBox(drawbot::SupplierInterface const *supplier, DialogText const &title,
                                 DialogText const &label, std::u16string &text, UI_Node *parent = nullptr);

// A question with a confirm button (`confirmText`, "OK" when empty) and
// Cancel. True when confirmed.
KIVUI_EXPORT bool SimpleConfirmationBox(drawbot::SupplierInterface const *supplier, DialogText const &title,
                                        DialogText const &message, UI_Node *parent = nullptr,
                                        DialogText const &confirmText = DialogText());

// An error with an OK button.
KIVUI_EXPORT void SimpleErrorMessageBox(drawbot::SupplierInterface const *supplier, DialogText const &title,
                                        DialogText const &message, UI_Node *parent = nullptr);

} // namespace kivui::dialogs

namespace kivui::messagebox {

// A stop alert: something cannot be done as asked; OK only.
KIVUI_EXPORT void ShowStop(drawbot::SupplierInterface const *supplier, dialogs::DialogText const &title,
                           dialogs::DialogText const &message, UI_Node *parent = nullptr);
// A note (information) with OK only.
KIVUI_EXPORT void ShowNote(drawbot::SupplierInterface const *supplier, dialogs::DialogText const &title,
                           dialogs::DialogText const &message, UI_Node *parent = nullptr);

} // namespace kivui::messagebox

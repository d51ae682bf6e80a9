#pragma once
// Private to kivui: not installed, not API.
#include <QLoggingCategory>

#include <functional>
#include <string>

class QDialog;
class QWidget;

Q_DECLARE_LOGGING_CATEGORY(lcKivUiDialogs)

namespace kivui::dialogs::detail {

// How a modal run is answered the way a user would answer it.
struct ModalAnswerers {
    std::function<void()> ok;                         // press the OK / confirm button
    std::function<void()> cancel;                     // press Cancel / Escape
    std::function<void(std::u16string const &)> text; // type into the input field
    std::u16string message;                           // recorded in the history
};

// Runs `dialog` modally and returns its result code (QDialog::Accepted or
// Rejected). Scripted responses answer it when scripting is on.
int RunModal(QDialog &dialog, ModalAnswerers const &answerers);

// The window that a dialog opened for `node` belongs to; null for none.
QWidget *ParentWindowOf(QWidget *nodeWidget);

} // namespace kivui::dialogs::detail

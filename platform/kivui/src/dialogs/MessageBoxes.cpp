#include <kivui/MessageBoxes.h>

#include <kivui/UI_Node.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/drawbot/SupplierInterface.h>

#include "dialogs/ModalRun_p.h"

#include <kivcore/Localizer.h>

#include <QAbstractButton>
#include <QFont>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace kivui::dialogs {

namespace {

QString Q(std::u16string const &text)
{
    return QString::fromStdU16String(text);
}

QWidget *ParentOf(UI_Node *parent)
{
    return parent ? detail::ParentWindowOf(parent->UI_GetWidget()) : nullptr;
}

void ApplyFont(QWidget &widget, drawbot::SupplierInterface const *supplier)
{
    if (supplier) widget.setFont(supplier->GetFont());
}

QString OkText()
{
    return Q(kivcore::config::Localizer::Localize("$$$/kivui/dialogs/OK=OK"));
}

QString CancelText()
{
    return Q(kivcore::config::Localizer::Localize("$$$/kivui/dialogs/Cancel=Cancel"));
}

// A message box whose first button confirms and whose optional second one cancels.
bool RunMessageBox(QMessageBox::Icon icon, drawbot::SupplierInterface const *supplier, DialogText const &title,
                   DialogText const &message, UI_Node *parent, QString const &confirm, bool withCancel)
{
    std::u16string const text = message.Resolve();
    QMessageBox box(icon, Q(title.Resolve()), Q(text), QMessageBox::NoButton, ParentOf(parent));
    ApplyFont(box, supplier);
    QPushButton *ok = box.addButton(confirm, QMessageBox::AcceptRole);
    QPushButton *cancel = withCancel ? box.addButton(CancelText(), QMessageBox::RejectRole) : nullptr;
    box.setDefaultButton(ok);
    box.setEscapeButton(cancel ? static_cast<QAbstractButton *>(cancel) : ok);
    detail::ModalAnswerers answerers;
    answerers.ok = [ok] { ok->click(); };
    answerers.cancel = [&box, ok, cancel] {
        (cancel ? cancel : ok)->click();
        box.reject();
    };
    answerers.message = text;
    detail::RunModal(box, answerers);
    return box.clickedButton() == ok;
}

} // namespace

bool SimpleInputBox(drawbot::SupplierInterface const *supplier, DialogText const &title, DialogText const &label,
                    std::u16string &text, UI_Node *parent)
{
    std::u16string const labelText = label.Resolve();
    QInputDialog dialog(ParentOf(parent));
    ApplyFont(dialog, supplier);
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(Q(title.Resolve()));
    dialog.setLabelText(Q(labelText));
    dialog.setTextValue(Q(text));
    dialog.setOkButtonText(OkText());
    dialog.setCancelButtonText(CancelText());
    // Wide enough for a file or schema name without scrolling.
    dialog.resize(std::max(dialog.sizeHint().width(), 320), dialog.sizeHint().height());
    if (auto *edit = dialog.findChild<QLineEdit *>()) edit->selectAll();
    detail::ModalAnswerers answerers;
    answerers.ok = [&dialog] { dialog.accept(); };
    answerers.cancel = [&dialog] { dialog.reject(); };
    answerers.text = [&dialog](std::u16string const &typed) { dialog.setTextValue(Q(typed)); };
    answerers.message = labelText;
    if (detail::RunModal(dialog, answerers) != QDialog::Accepted) return false;
    text = dialog.textValue().toStdU16String();
    return true;
}

bool SimpleConfirmationBox(drawbot::SupplierInterface const *supplier, DialogText const &title,
                           DialogText const &message, UI_Node *parent, DialogText const &confirmText)
{
    std::u16string const confirm = confirmText.Resolve();
    return RunMessageBox(QMessageBox::Question, supplier, title, message, parent,
                         confirm.empty() ? OkText() : Q(confirm), true);
}

void SimpleErrorMessageBox(drawbot::SupplierInterface const *supplier, DialogText const &title,
                           DialogText const &message, UI_Node *parent)
{
    RunMessageBox(QMessageBox::Critical, supplier, title, message, parent, OkText(), false);
}

} // namespace kivui::dialogs

namespace kivui::messagebox {

void ShowStop(drawbot::SupplierInterface const *supplier, dialogs::DialogText const &title,
              dialogs::DialogText const &message, UI_Node *parent)
{
    dialogs::RunMessageBox(QMessageBox::Critical, supplier, title, message, parent, dialogs::OkText(), false);
}

void ShowNote(drawbot::SupplierInterface const *supplier, dialogs::DialogText const &title,
              dialogs::DialogText const &message, UI_Node *parent)
{
    dialogs::RunMessageBox(QMessageBox::Information, supplier, title, message, parent, dialogs::OkText(), false);
}

namespace {

// Installed when the library loads, before any text edit can commit; the
// widgets themselves never depend on the dialogs.
[[maybe_unused]] bool const sTextEditWarningInstalled = [] {
    UI_TextEdit::SetValidationWarningPresenter([](UI_TextEdit &inEdit, std::u16string const &inWarning) {
        ShowStop(inEdit.UI_GetDrawSupplier(), dialogs::DialogText("$$$/kivui/UI_TextEdit/WarningTitle=Warning"),
                 dialogs::DialogText(inWarning), &inEdit);
    });
    return true;
}();

} // namespace

} // namespace kivui::messagebox

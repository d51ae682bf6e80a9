#include <kivui/UI_Dialog.h>

#include <kivui/PrefManager.h>

#include "dialogs/DialogWidget_p.h"
#include "dialogs/ModalRun_p.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QPointer>
#include <QPushButton>
#include <QShowEvent>

namespace kivui {

struct UI_Dialog::Private {
    DialogWidget *dialog = nullptr;
    kivcore::utility::IntrusivePtr<UI_Node> okButton;
    kivcore::utility::IntrusivePtr<UI_Node> cancelButton;
    QMetaObject::Connection okConnection;
    QMetaObject::Connection cancelConnection;
    Result result = Result::kNone;
    kivcore::PointF minimumSize;
};

DialogWidget::DialogWidget(QWidget *parent) : QDialog(parent) {}

void DialogWidget::reject()
{
    // Escape and the window's close box go through the dialog's own cancel path.
    if (mOwner)
        mOwner->DefaultCloseCancel();
    else
        QDialog::reject();
}

void DialogWidget::closeEvent(QCloseEvent *event)
{
    if (mOwner && isVisible()) {
        event->ignore();
        mOwner->DefaultCloseCancel();
        return;
    }
    QDialog::closeEvent(event);
}

void DialogWidget::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (mOwner && !event->spontaneous()) mOwner->DialogShown();
}

UI_Dialog::UI_Dialog(drawbot::SupplierInterface *inSupplier, dialogs::DialogText const &inTitle, UI_Node *inParent)
    : UI_SubView(new DialogWidget(inParent ? dialogs::detail::ParentWindowOf(inParent->UI_GetWidget()) : nullptr)),
      d(std::make_unique<Private>())
{
    d->dialog = static_cast<DialogWidget *>(UI_GetWidget());
    d->dialog->mOwner = this;
    d->dialog->setSizeGripEnabled(false);
    UI_SetDrawSupplier(inSupplier);
    SetTitle(inTitle);
}

UI_Dialog::~UI_Dialog()
{
    if (d->dialog) d->dialog->mOwner = nullptr;
    QObject::disconnect(d->okConnection);
    QObject::disconnect(d->cancelConnection);
}

QDialog *UI_Dialog::GetDialog() const
{
    return d->dialog;
}

void UI_Dialog::SetTitle(dialogs::DialogText const &inTitle)
{
    d->dialog->setWindowTitle(QString::fromStdU16String(inTitle.Resolve()));
}

std::u16string UI_Dialog::GetTitle() const
{
    return d->dialog->windowTitle().toStdU16String();
}

void UI_Dialog::SetButtons(UI_Node *inOkButton, UI_Node *inCancelButton)
{
    QObject::disconnect(d->okConnection);
    QObject::disconnect(d->cancelConnection);
    d->okButton = inOkButton;
    d->cancelButton = inCancelButton;
    auto buttonOf = [](UI_Node *node) -> QAbstractButton * {
        if (!node) return nullptr;
        QWidget *w = node->UI_GetWidget();
        if (auto *b = qobject_cast<QAbstractButton *>(w)) return b;
        return w ? w->findChild<QAbstractButton *>() : nullptr;
    };
    if (QAbstractButton *ok = buttonOf(inOkButton)) {
        if (auto *push = qobject_cast<QPushButton *>(ok)) push->setDefault(true);
        d->okConnection = QObject::connect(ok, &QAbstractButton::clicked, d->dialog, [this] { DefaultCloseOk(); });
    }
    if (QAbstractButton *cancel = buttonOf(inCancelButton)) {
        if (auto *push = qobject_cast<QPushButton *>(cancel)) push->setAutoDefault(false);
        d->cancelConnection =
            QObject::connect(cancel, &QAbstractButton::clicked, d->dialog, [this] { DefaultCloseCancel(); });
    }
}

UI_Node *UI_Dialog::GetOkButton() const
{
    return d->okButton.get();
}

UI_Node *UI_Dialog::GetCancelButton() const
{
    return d->cancelButton.get();
}

bool UI_Dialog::RunModal()
{
    // The dialog must outlive its run even when a handler drops the last reference.
    kivcore::utility::IntrusivePtr<UI_Node> keepAlive(this);
    d->result = Result::kNone;
    dialogs::detail::ModalAnswerers answerers;
    answerers.ok = [this] {
        QWidget *ok = d->okButton ? d->okButton->UI_GetWidget() : nullptr;
        auto *button = qobject_cast<QAbstractButton *>(ok);
        if (!button && ok) button = ok->findChild<QAbstractButton *>();
        // Press the button as a user would, so that disabled buttons stay dead.
        if (button) {
            if (button->isEnabled()) button->click();
        } else {
            DefaultCloseOk();
        }
    };
    answerers.cancel = [this] { DefaultCloseCancel(); };
    dialogs::detail::RunModal(*d->dialog, answerers);
    return d->result == Result::kOk;
}

void UI_Dialog::Show()
{
    d->result = Result::kNone;
    d->dialog->show();
}

bool UI_Dialog::IsOpen() const
{
    return d->dialog->isVisible();
}

UI_Dialog::Result UI_Dialog::GetResult() const
{
    return d->result;
}

void UI_Dialog::DefaultCloseOk()
{
    CloseWithResult(Result::kOk);
}

void UI_Dialog::DefaultCloseCancel()
{
    CloseWithResult(Result::kCancel);
}

void UI_Dialog::CloseWithResult(Result inResult)
{
    d->result = inResult;
    d->dialog->done(inResult == Result::kOk ? QDialog::Accepted : QDialog::Rejected);
}

void UI_Dialog::DialogShown() {}

void UI_Dialog::SetMinimumSize(kivcore::PointF const &inSize)
{
    d->minimumSize = inSize;
    d->dialog->setMinimumSize(static_cast<int>(std::ceil(inSize.x)), static_cast<int>(std::ceil(inSize.y)));
}

kivcore::PointF UI_Dialog::GetMinimumSize() const
{
    return d->minimumSize;
}

void UI_Dialog::SetResizable(bool inResizable)
{
    d->dialog->setSizeGripEnabled(inResizable);
    if (!inResizable)
        d->dialog->setFixedSize(d->dialog->size());
    else
        d->dialog->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

bool UI_Dialog::RestoreWindowPositionAndSize(kivcore::PointF const &inDefaultSize)
{
    utility::PrefManager *prefs = utility::PrefManager::GetPrefManager();
    if (prefs && !UI_GetNodeID().empty()) {
        kivcore::RectF const saved = prefs->GetWindowPositionAndSize(UI_GetNodeID());
        if (saved.width >= 1.0f && saved.height >= 1.0f) {
            kivcore::RectF rect = saved;
            rect.width = std::max(rect.width, d->minimumSize.x);
            rect.height = std::max(rect.height, d->minimumSize.y);
            UI_SetGlobalStructureRect(rect);
            return true;
        }
    }
    if (inDefaultSize.x >= 1.0f && inDefaultSize.y >= 1.0f) {
        kivcore::RectF rect = UI_GetGlobalStructureRect();
        rect.width = inDefaultSize.x;
        rect.height = inDefaultSize.y;
        UI_SetGlobalStructureRect(rect);
    }
    return false;
}

void UI_Dialog::SaveWindowPositionAndSize() const
{
    utility::PrefManager *prefs = utility::PrefManager::GetPrefManager();
    if (!prefs || UI_GetNodeID().empty()) return;
    prefs->SetWindowPositionAndSize(UI_GetNodeID(), UI_GetGlobalStructureRect());
}

} // namespace kivui

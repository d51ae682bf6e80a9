#include <kivui/UI_Popup.h>

#include <QComboBox>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStandardItemModel>

namespace kivui {

namespace {
constexpr int kChoiceDataRole = Qt::UserRole + 1;
}

// Begins and ends the edits of an editable popup's text field.
class PopupEditWatcher : public QObject {
public:
    explicit PopupEditWatcher(UI_Popup *inPopup) : mPopup(inPopup) {}

protected:
    bool eventFilter(QObject *, QEvent *inEvent) override
    {
        if (inEvent->type() == QEvent::FocusOut) {
            auto *focus = static_cast<QFocusEvent *>(inEvent);
            if (focus->reason() != Qt::PopupFocusReason && focus->reason() != Qt::ActiveWindowFocusReason)
                mPopup->CommitEdit();
        } else if (inEvent->type() == QEvent::KeyPress) {
            auto *key = static_cast<QKeyEvent *>(inEvent);
            if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
                mPopup->CommitEdit();
                return true;
            }
        }
        return false;
    }

private:
    UI_Popup *mPopup;
};

struct UI_Popup::Private {
    QComboBox *combo = nullptr;
    PopupEditWatcher *watcher = nullptr;
    int type = UI_Popup::kPopupTypeMenu;
    std::uint32_t editFlags = 0;
    bool allowEmpty = false;
    bool setting = false;
    bool editing = false;
    std::u16string committedText;
    std::u16string unknownText;
};

UI_Popup::UI_Popup() : UI_InteractiveControlView(new QComboBox), d(std::make_unique<Private>())
{
    d->combo = static_cast<QComboBox *>(UI_GetWidget());
    d->combo->setProperty("kivuiClass", QStringLiteral("UI_Popup"));
    d->combo->setInsertPolicy(QComboBox::NoInsert);
    // AdjustToContents would have Qt resize the box on its own timer whenever
    // the items change, overriding the node's rectangle; this policy only
    // sizes the hint from the items.
    d->combo->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    QObject::connect(d->combo, &QComboBox::activated, d->combo, [this](int index) { UserChose(index); });
    QSize const hint = d->combo->sizeHint();
    UI_SetLocalRectF(kivcore::RectF{0, 0, float(hint.width()), float(std::max(hint.height(), 19))});
}

UI_Popup::~UI_Popup()
{
    // The combo box outlives this part of the node: keep its field's focus
    // loss from reaching a half-destroyed popup.
    auto *combo = qobject_cast<QComboBox *>(UI_GetWidget());
    if (d->watcher && combo) {
        if (QLineEdit *edit = combo->lineEdit()) edit->removeEventFilter(d->watcher);
    }
}

QComboBox *UI_Popup::GetComboBox() const
{
    return d->combo;
}

void UI_Popup::DeleteAllItems()
{
    d->setting = true;
    d->combo->clear();
    d->setting = false;
}

void UI_Popup::AddItem(std::u16string const &inText, std::optional<std::string> inChoiceData)
{
    d->setting = true;
    QVariant data;
    if (inChoiceData) data = QString::fromStdString(*inChoiceData);
    bool const first = d->combo->count() == 0;
    d->combo->addItem(QString::fromStdU16String(inText));
    d->combo->setItemData(d->combo->count() - 1, data, kChoiceDataRole);
    // A menu shows its first item until told otherwise; nothing is chosen yet
    // for an unknown value.
    if (first && IsValueUnknown()) d->combo->setCurrentIndex(-1);
    d->setting = false;
}

void UI_Popup::AddSeparator()
{
    d->setting = true;
    d->combo->insertSeparator(d->combo->count());
    d->setting = false;
}

void UI_Popup::DisableItem(int inIndex)
{
    if (auto *model = qobject_cast<QStandardItemModel *>(d->combo->model())) {
        if (QStandardItem *item = model->item(inIndex)) item->setEnabled(false);
    }
}

bool UI_Popup::IsItemEnabled(int inIndex) const
{
    if (auto *model = qobject_cast<QStandardItemModel *>(d->combo->model())) {
        if (QStandardItem *item = model->item(inIndex)) return item->isEnabled() && item->isSelectable();
    }
    return false;
}

int UI_Popup::CountItems() const
{
    return d->combo->count();
}

std::u16string UI_Popup::GetItemText(int inIndex) const
{
    return d->combo->itemText(inIndex).toStdU16String();
}

std::optional<std::string> UI_Popup::GetItemData(int inIndex) const
{
    if (inIndex < 0 || inIndex >= d->combo->count()) return std::nullopt;
    QVariant const data = d->combo->itemData(inIndex, kChoiceDataRole);
    if (!data.isValid()) return std::nullopt;
    return data.toString().toStdString();
}

int UI_Popup::FindItemByData(std::string const &inData) const
{
    return d->combo->findData(QString::fromStdString(inData), kChoiceDataRole, Qt::MatchExactly);
}

void UI_Popup::SetValue(int inIndex)
{
    d->setting = true;
    if (inIndex < -1 || inIndex >= d->combo->count()) inIndex = -1;
    d->combo->setCurrentIndex(inIndex);
    if (d->combo->isEditable() && inIndex >= 0) d->combo->setEditText(d->combo->itemText(inIndex));
    d->setting = false;
    UI_ControlView::SetValueUnknown(false);
    d->committedText = GetValueString();
}

int UI_Popup::GetValue() const
{
    return d->combo->currentIndex();
}

void UI_Popup::SetValueString(std::u16string const &inText)
{
    QString const text = QString::fromStdU16String(inText);
    int const index = d->combo->findText(text, Qt::MatchExactly);
    SetValue(index);
    if (d->combo->isEditable()) {
        d->setting = true;
        d->combo->setEditText(text);
        d->setting = false;
        d->committedText = inText;
    }
}

std::u16string UI_Popup::GetValueString() const
{
    return d->combo->currentText().toStdU16String();
}

void UI_Popup::SetValueUnknown(bool inUnknown)
{
    UI_ControlView::SetValueUnknown(inUnknown);
    if (!inUnknown) return;
    d->setting = true;
    d->combo->setCurrentIndex(-1);
    if (d->combo->isEditable()) d->combo->setEditText(QString());
    d->setting = false;
    d->committedText.clear();
}

void UI_Popup::SetPopupType(int inType)
{
    d->type = inType;
    bool const editable = inType == kPopupTypeEditable;
    if (editable == d->combo->isEditable()) return;
    int const index = d->combo->currentIndex();
    d->setting = true;
    d->combo->setEditable(editable);
    d->combo->setCurrentIndex(index);
    d->setting = false;
    if (QLineEdit *edit = d->combo->lineEdit()) {
        d->watcher = new PopupEditWatcher(this);
        d->watcher->setParent(edit);
        edit->installEventFilter(d->watcher);
        edit->setPlaceholderText(QString::fromStdU16String(d->unknownText));
        QObject::connect(edit, &QLineEdit::textEdited, d->watcher, [this] {
            if (!d->editing) {
                d->editing = true;
                NotifyInteractively(UI_InteractiveControlChangedMessage::kBeginEditing);
            }
            UI_ControlView::SetValueUnknown(false);
        });
    }
}

int UI_Popup::GetPopupType() const
{
    return d->type;
}
void UI_Popup::SetEditTextFlags(std::uint32_t inFlags)
{
    d->editFlags = inFlags;
}
std::uint32_t UI_Popup::GetEditTextFlags() const
{
    return d->editFlags;
}
void UI_Popup::SetAllowEmpty(bool inAllow)
{
    d->allowEmpty = inAllow;
}
bool UI_Popup::GetAllowEmpty() const
{
    return d->allowEmpty;
}

void UI_Popup::SetUnknownStateText(std::u16string const &inText)
{
    d->unknownText = inText;
    d->combo->setPlaceholderText(QString::fromStdU16String(inText));
    if (QLineEdit *edit = d->combo->lineEdit()) edit->setPlaceholderText(QString::fromStdU16String(inText));
}

std::u16string const &UI_Popup::GetUnknownStateText() const
{
    return d->unknownText;
}

void UI_Popup::UserChose(int inIndex)
{
    if (d->setting || IsDisabled() || inIndex < 0) return;
    UI_ControlView::SetValueUnknown(false);
    if (d->combo->isEditable()) {
        d->setting = true;
        d->combo->setEditText(d->combo->itemText(inIndex));
        d->setting = false;
        d->editing = false;
    }
    d->committedText = GetValueString();
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
    NotifyChanged();
}

void UI_Popup::CommitEdit()
{
    if (!d->editing) return;
    std::u16string text = GetValueString();
    if (text.empty() && !d->allowEmpty) {
        d->setting = true;
        d->combo->setEditText(QString::fromStdU16String(d->committedText));
        d->setting = false;
        text = d->committedText;
    }
    d->editing = false;
    // Typing an item's text chooses that item.
    int const index = d->combo->findText(QString::fromStdU16String(text), Qt::MatchExactly);
    d->setting = true;
    d->combo->setCurrentIndex(index);
    d->combo->setEditText(QString::fromStdU16String(text));
    d->setting = false;
    bool const changed = text != d->committedText;
    d->committedText = text;
    NotifyInteractively(UI_InteractiveControlChangedMessage::kEndEditing);
    if (changed) NotifyChanged();
}

} // namespace kivui

#include <kivui/UI_TextEdit.h>
#include <kivui/UI_TextEdit_MS.h>

#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTimer>

namespace kivui {

// Watches the Qt editor for the focus changes and keys that begin and end
// editing.
class TextEditWatcher : public QObject {
public:
    explicit TextEditWatcher(UI_TextEdit *inEdit) : mEdit(inEdit) {}

protected:
    bool eventFilter(QObject *, QEvent *inEvent) override;

private:
    UI_TextEdit *mEdit;
};

struct UI_TextEdit::Private {
    QPointer<QLineEdit> line;
    QPointer<QPlainTextEdit> plain;
    TextEditWatcher *watcher = nullptr;
    std::u16string unknownText;
    std::u16string committed; // value at the last commit or SetValue
    std::uint32_t editFlags = 0;
    bool allowEmpty = true;
    bool readOnly = false;
    bool editing = false;
    bool settingText = false;
    bool inWarning = false;

    QString Text() const { return line ? line->text() : plain ? plain->toPlainText() : QString(); }
    void SetText(QString const &inText)
    {
        settingText = true;
        if (line)
            line->setText(inText);
        else if (plain)
            plain->setPlainText(inText);
        settingText = false;
    }
};

namespace {

UI_TextEdit::ValidationWarningPresenter &InstalledWarningPresenter()
{
    static UI_TextEdit::ValidationWarningPresenter presenter;
    return presenter;
}

} // namespace

bool TextEditWatcher::eventFilter(QObject *, QEvent *inEvent)
{
    switch (inEvent->type()) {
    case QEvent::FocusIn:
        mEdit->BeginEditing();
        break;
    case QEvent::FocusOut: {
        auto *focus = static_cast<QFocusEvent *>(inEvent);
        // A menu or the window losing activation is not the end of an edit.
        if (focus->reason() != Qt::PopupFocusReason && focus->reason() != Qt::ActiveWindowFocusReason &&
            !mEdit->d->inWarning)
            mEdit->CommitEditing();
        break;
    }
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(inEvent);
        bool const isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (isReturn && mEdit->d->line) {
            mEdit->CommitEditing();
            // Refused or committed, Return stays here; after a commit the
            // next keystroke starts a new edit.
            return true;
        }
        if (key->key() == Qt::Key_Escape && mEdit->d->editing) {
            mEdit->d->SetText(QString::fromStdU16String(mEdit->d->committed));
            return true;
        }
        break;
    }
    default:
        break;
    }
    return false;
}

UI_TextEdit::UI_TextEdit() : UI_TextEdit(EditorKind::kSingleLine, nullptr) {}

UI_TextEdit::UI_TextEdit(EditorKind inKind, QWidget *inFrame)
    : UI_InteractiveControlView(inFrame                             ? inFrame
                                : inKind == EditorKind::kSingleLine ? static_cast<QWidget *>(new QLineEdit)
                                                                    : static_cast<QWidget *>(new QPlainTextEdit)),
      d(std::make_unique<Private>())
{
    QWidget *editor = nullptr;
    if (inFrame) {
        editor = inKind == EditorKind::kSingleLine ? static_cast<QWidget *>(new QLineEdit(inFrame))
                                                   : static_cast<QWidget *>(new QPlainTextEdit(inFrame));
        inFrame->setFocusProxy(editor);
    } else {
        editor = UI_GetWidget();
    }
    d->line = qobject_cast<QLineEdit *>(editor);
    d->plain = qobject_cast<QPlainTextEdit *>(editor);
    d->watcher = new TextEditWatcher(this);
    d->watcher->setParent(editor);
    editor->installEventFilter(d->watcher);
    editor->setObjectName(QStringLiteral("kivuiTextEditor"));
    UI_GetWidget()->setProperty("kivuiClass", QStringLiteral("UI_TextEdit"));

    if (d->line) {
        QObject::connect(d->line.data(), &QLineEdit::textEdited, d->watcher, [this] { UserEdited(); });
    } else {
        d->plain->setTabChangesFocus(true);
        d->plain->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        d->plain->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QObject::connect(d->plain.data(), &QPlainTextEdit::textChanged, d->watcher, [this] {
            if (!d->settingText) UserEdited();
        });
    }
    kivcore::PointF const size = GetPreferredSize(nullptr);
    UI_SetLocalRectF(kivcore::RectF{0.0f, 0.0f, size.x, size.y});
}

UI_TextEdit::~UI_TextEdit()
{
    // The watcher dies with the editor; keep it from calling back meanwhile.
    if (QWidget *editor = GetEditorWidget()) editor->removeEventFilter(d->watcher);
}

QLineEdit *UI_TextEdit::GetLineEdit() const
{
    return d->line.data();
}
QPlainTextEdit *UI_TextEdit::GetPlainTextEdit() const
{
    return d->plain.data();
}

QWidget *UI_TextEdit::GetEditorWidget() const
{
    return d->line ? static_cast<QWidget *>(d->line.data()) : static_cast<QWidget *>(d->plain.data());
}

std::u16string UI_TextEdit::GetValue() const
{
    return d->Text().toStdU16String();
}

void UI_TextEdit::SetValue(std::u16string const &inText, bool inNotify)
{
    bool const changed = inText != GetValue() || IsValueUnknown();
    UI_ControlView::SetValueUnknown(false);
    d->SetText(QString::fromStdU16String(inText));
    d->committed = inText;
    if (inNotify && changed) NotifyChanged();
}

std::u16string const &UI_TextEdit::GetUnknownStateText() const
{
    return d->unknownText;
}

void UI_TextEdit::SetUnknownStateText(std::u16string const &inText)
{
    d->unknownText = inText;
    ApplyPlaceholder();
}

void UI_TextEdit::SetValueUnknown(bool inUnknown)
{
    UI_ControlView::SetValueUnknown(inUnknown);
    if (inUnknown) {
        d->SetText(QString());
        d->committed.clear();
    }
    ApplyPlaceholder();
}

void UI_TextEdit::ApplyPlaceholder()
{
    QString const text = QString::fromStdU16String(d->unknownText);
    if (d->line) d->line->setPlaceholderText(text);
    if (d->plain) d->plain->setPlaceholderText(text);
}

void UI_TextEdit::SetReadOnlyMode(bool inReadOnly)
{
    d->readOnly = inReadOnly;
    if (d->line) d->line->setReadOnly(inReadOnly);
    if (d->plain) {
        d->plain->setReadOnly(inReadOnly);
        // Read-only text must stay selectable and copyable with the keyboard.
        d->plain->setTextInteractionFlags(inReadOnly ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard
                                                     : Qt::TextEditorInteraction);
    }
    UI_GetWidget()->setProperty("kivuiReadOnly", inReadOnly);
}

bool UI_TextEdit::IsReadOnlyMode() const
{
    return d->readOnly;
}

void UI_TextEdit::SelectAll()
{
    if (d->line) d->line->selectAll();
    if (d->plain) d->plain->selectAll();
}

bool UI_TextEdit::IsEditing() const
{
    return d->editing;
}

void UI_TextEdit::SetEditTextFlags(std::uint32_t inFlags)
{
    d->editFlags = inFlags;
}
std::uint32_t UI_TextEdit::GetEditTextFlags() const
{
    return d->editFlags;
}
void UI_TextEdit::SetAllowEmpty(bool inAllow)
{
    d->allowEmpty = inAllow;
}
bool UI_TextEdit::GetAllowEmpty() const
{
    return d->allowEmpty;
}

void UI_TextEdit::SetMaxLength(int inLength)
{
    if (d->line) d->line->setMaxLength(inLength);
}

std::optional<std::u16string> UI_TextEdit::ValidateText(std::u16string const &) const
{
    return std::nullopt;
}

void UI_TextEdit::SetValidationWarningPresenter(ValidationWarningPresenter inPresenter)
{
    InstalledWarningPresenter() = std::move(inPresenter);
}

kivcore::PointF UI_TextEdit::GetPreferredSize(drawbot::Drawbot const *) const
{
    QWidget const *editor = GetEditorWidget();
    QFontMetricsF const fm(editor->font());
    float const textWidth = float(std::ceil(fm.horizontalAdvance(d->Text())));
    if (d->line) {
        // Frame and text margins of a line edit; matches QLineEdit's own hint.
        float const height = float(std::max(20, d->line->sizeHint().height()));
        return kivcore::PointF{std::max(60.0f, textWidth + 12.0f), height};
    }
    float const lines = 3.0f;
    float const height = float(std::ceil(fm.lineSpacing() * lines)) + 10.0f;
    return kivcore::PointF{std::max(100.0f, textWidth + 24.0f), height};
}

void UI_TextEdit::UpdateEnabledState()
{
    UI_ControlView::UpdateEnabledState();
    UI_GetWidget()->setProperty("kivuiDisabled", IsDisabled());
}

void UI_TextEdit::BeginEditing()
{
    if (d->editing || d->readOnly || IsDisabled()) return;
    d->editing = true;
    NotifyInteractively(UI_InteractiveControlChangedMessage::kBeginEditing);
}

void UI_TextEdit::UserEdited()
{
    if (d->settingText) return;
    if (!d->editing) BeginEditing();
    if (IsValueUnknown()) UI_ControlView::SetValueUnknown(false);
    NotifyInteractively(UI_InteractiveControlChangedMessage::kChanged);
}

bool UI_TextEdit::CommitEditing()
{
    if (!d->editing) return true;
    std::u16string text = GetValue();
    if (text.empty() && !d->allowEmpty) {
        d->SetText(QString::fromStdU16String(d->committed));
        text = d->committed;
    }
    if (auto warning = ValidateText(text)) {
        ShowValidationWarning(*warning);
        return false;
    }
    d->editing = false;
    bool const changed = text != d->committed;
    d->committed = text;
    NotifyInteractively(UI_InteractiveControlChangedMessage::kEndEditing);
    if (changed) NotifyChanged();
    return true;
}

void UI_TextEdit::ShowValidationWarning(std::u16string const &inWarning)
{
    // A copy: the presenter runs a modal loop, during which another may be installed.
    ValidationWarningPresenter const present = InstalledWarningPresenter();
    if (!present) return;
    d->inWarning = true;
    present(*this, inWarning);
    d->inWarning = false;
    if (QWidget *editor = GetEditorWidget(); editor && editor->isVisible()) editor->setFocus(Qt::OtherFocusReason);
}

// ---------------------------------------------------------------------------

UI_TextEdit_MS::UI_TextEdit_MS() : UI_TextEdit(EditorKind::kMultiLine, nullptr)
{
    GetPlainTextEdit()->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    UI_GetWidget()->setProperty("kivuiClass", QString::fromLatin1(kClassName));
}

UI_TextEdit_MS::~UI_TextEdit_MS() = default;

} // namespace kivui

#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/ModuleInfo.h>

#include <kivcore/Localizer.h>
#include <kivui/Message.h>
#include <kivui/SkinManager.h>

#include <QLineEdit>
#include <QStyle>

namespace kivmetadataui {
namespace {

constexpr char kFormatErrorKey[] =
    "$$$/kivmetadataui/UI_DateTextEdit/Warning/FormatError=The date format is not valid. Please enter date in "
    "YYYY/MM/DD HH:MM:SS #{plusmn}HH:MM format.";

} // namespace

struct UI_DateTextEdit::Private {
    std::optional<kivmetadata::XMP_DateTime> mDateTime;
    std::shared_ptr<std::function<void(kivui::Message *)>> mEditHandler;
};

UI_DateTextEdit::UI_DateTextEdit() : d(std::make_unique<Private>())
{
    // The skins of the date edit are registered through the module record;
    // make sure it exists once a date edit does.
    ModuleInfo::Get();
    if (QLineEdit *edit = GetLineEdit()) {
        edit->setProperty(kSkinProperty, true);
        edit->setProperty(kInvalidProperty, false);
        // Its skins are style-sheet rules on the field itself.
        kivui::skins::core::SkinManager::AdoptWidget(edit);
    }
    d->mEditHandler = std::make_shared<std::function<void(kivui::Message *)>>([this](kivui::Message *inMessage) {
        auto *changed = dynamic_cast<kivui::UI_InteractiveControlChangedMessage *>(inMessage);
        if (!changed) return;
        if (changed->GetChangeMessage() == kivui::UI_InteractiveControlChangedMessage::kChanged) {
            UpdateInvalidMark(GetValue());
        } else if (changed->GetChangeMessage() == kivui::UI_InteractiveControlChangedMessage::kEndEditing) {
            // The commit passed validation: store and normalise what was typed.
            const std::u16string text = GetValue();
            if (!text.empty())
                SetValue(text);
            else
                d->mDateTime.reset();
            UpdateInvalidMark(GetValue());
        }
    });
    NotifyWhenChangedInteractively(d->mEditHandler);
}

UI_DateTextEdit::~UI_DateTextEdit()
{
    // The handler captures this object; the toolkit may still hold it.
    if (d->mEditHandler) *d->mEditHandler = nullptr;
}

std::optional<kivmetadata::XMP_DateTime> const &UI_DateTextEdit::GetDateTime() const
{
    return d->mDateTime;
}

void UI_DateTextEdit::SetValue(std::u16string const &inText)
{
    kivmetadata::XMP_DateTime parsed;
    if (ParseDateTimeStr(inText, parsed)) {
        d->mDateTime = parsed;
        kivui::UI_TextEdit::SetValue(FormatDateTimeStr(parsed), false);
    } else {
        if (inText.empty()) d->mDateTime.reset();
        kivui::UI_TextEdit::SetValue(inText, false);
    }
    UpdateInvalidMark(GetValue());
}

std::optional<std::u16string> UI_DateTextEdit::ValidateText(std::u16string const &inText) const
{
    if (!IsValueKnown() || inText.empty()) return std::nullopt;
    kivmetadata::XMP_DateTime parsed;
    if (ParseDateTimeStr(inText, parsed)) return std::nullopt;
    return kivcore::config::Localizer::Localize(kFormatErrorKey);
}

void UI_DateTextEdit::UpdateInvalidMark(std::u16string const &inText)
{
    QLineEdit *edit = GetLineEdit();
    if (!edit) return;
    kivmetadata::XMP_DateTime parsed;
    const bool invalid = !inText.empty() && !ParseDateTimeStr(inText, parsed);
    if (edit->property(kInvalidProperty).toBool() == invalid) return;
    edit->setProperty(kInvalidProperty, invalid);
    // Style sheets read dynamic properties when a widget is polished.
    edit->style()->unpolish(edit);
    edit->style()->polish(edit);
}

} // namespace kivmetadataui

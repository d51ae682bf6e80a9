#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadata/DateTime.h>
#include <kivui/UI_TextEdit.h>

#include <memory>
#include <optional>
#include <string>

namespace kivmetadataui {

// A text edit for XMP dates. Accepts the loose forms that ParseDateTimeStr
// reads, shows what it stores in the form FormatDateTimeStr writes, and
// refuses to commit a text that is not a date. Styled by the date-edit skin
// of the look in use.
class KIVMETADATAUI_EXPORT UI_DateTextEdit : public kivui::UI_TextEdit {
public:
    // The property on the line edit through which the skins find it.
    static constexpr char kSkinProperty[] = "kivDateTextEdit";
    // Set on the line edit while the typed text is not a date.
    static constexpr char kInvalidProperty[] = "kivDateInvalid";

    UI_DateTextEdit();

    // Shows a value's text without notifying: a date is stored and shown
    // normalised, anything else is shown as it is.
    void SetValue(std::u16string const &inText);

    // The warning that refuses the commit of a known, non-empty text that is
    // not a date; nothing for an empty text (it clears the value) or while
    // several differing values are shown.
    std::optional<std::u16string> ValidateText(std::u16string const &inText) const override;

    // The date last stored by SetValue, or by a commit the validation let pass.
    std::optional<kivmetadata::XMP_DateTime> const &GetDateTime() const;

protected:
    ~UI_DateTextEdit() override;

private:
    void UpdateInvalidMark(std::u16string const &inText);

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

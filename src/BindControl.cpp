#include <kivmetadataui/BindControl.h>

#include "BindControl_p.h"
#include "ValueDisplay_p.h"

#include <kivmetadataui/ControlKind.h>

#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/DateTime.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/MRULists.h>
#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivui/Message.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_URLEdit.h>

#include <QLocale>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace kivmetadataui {
namespace {

using kivcore::config::Localizer;
using kivcore::utility::Utf16ToUtf8;
using kivcore::utility::Utf8ToUtf16;
using kivmetadata::GetValueResult;
using kivmetadata::MetaDataReadAccess;
using kivmetadata::MetaDataUpdateAccess;
using kivmetadata::Path;
using kivmetadata::PropertyDefinition;
using kivmetadata::Value;

constexpr char kUnit[] = "src/BindControl";
constexpr char kAutoCompletionPreference[] = "enableAutoCompletion";
constexpr char kChoiceRawProperty[] = "kivChoiceRawValues";
constexpr char kChoiceDisplayProperty[] = "kivChoiceDisplays";

std::optional<bool> sAutoCompletionEnabled;
constexpr char kEditTextMultipleValues[] =
    "$$$/kivmetadataui/UpdateControl/EditText/MultipleValuesDisplayString=<Multiple Values>";
constexpr char kStaticTextMultipleValues[] =
    "$$$/kivmetadataui/UpdateControl/StaticText/MultipleValuesDisplayString=<Multiple Values>";
constexpr char kDublinCore[] = "http://purl.org/dc/elements/1.1/";
// Marks a text control whose multiple-values handler is installed.
constexpr char kHandlerInstalledProperty[] = "kivMultipleValuesHandler";
// The tooltip a control had before the stored value was added to it.
constexpr char kBaseToolTipProperty[] = "kivBaseToolTip";
constexpr char kStoredValueKey[] = "$$$/kivmetadataui/UpdateControl/StoredValueToolTip=Stored as: @0";

// Values longer than this are shown shortened: laying out a megabyte of text
// takes seconds. A shortened text is never editable in place, so it can never
// be written back in place of the value.
constexpr std::size_t kMaxShownLength = 2000;
constexpr char kShortenedKey[] = "$$$/kivmetadataui/UpdateControl/ShortenedValue=#{hellip} (@0 characters in all)";
constexpr char kShortenedItemsKey[] = "$$$/kivmetadataui/UpdateControl/ShortenedItems=#{hellip} (@0 items in all)";
// Marks a text control made read-only because it shows a shortened value.
constexpr char kShortenedProperty[] = "kivShortenedValue";

// Text modes of the toolkit's static text.
constexpr int kTextModePlain = 2;
constexpr int kTextModeAddress = 3;

std::string LocalName(std::string const &inPath)
{
    const auto colon = inPath.find(':');
    return colon == std::string::npos ? inPath : inPath.substr(colon + 1);
}

bool IsSubjectOrCreator(Path const &inPath)
{
    if (inPath.mNamespace != kDublinCore) return false;
    const std::string name = LocalName(inPath.mPath);
    return name == "subject" || name == "creator";
}

GetValueResult ReadString(Value const &inValue, std::string &outText)
{
    GetValueResult result = kivmetadata::kGetValueResult_Unreadable;
    if (!inValue.mProvider) return result;
    MetaDataReadAccess access(inValue.mProvider);
    kivmetadata::GetValue(inValue, outText, result);
    return result;
}

// The text shown for several differing values. For the Dublin Core subject
// and creator the union of every asset's items is shown instead, when the
// provider offers one in the transient namespace.
std::u16string MultipleValuesText(Value const &inValue, char const *inKey)
{
    if (IsSubjectOrCreator(inValue.mPath) && inValue.mProvider) {
        std::string own;
        ReadString(inValue, own);
        const Value transient{inValue.mNotEditable,
                              kivmetadata::PathForSchemaNameAndPropertyName(kivmetadata::kTransientNamespace,
                                                                            LocalName(inValue.mPath.mPath)),
                              inValue.mProvider};
        std::string united;
        ReadString(transient, united);
        if (!united.empty()) return Utf8ToUtf16(united);
    }
    return Localizer::Localize(inKey);
}

// A control that shows a value in another form than the stored one names
// the stored text in its tooltip; `inStored` empty takes that line away.
void ShowStoredValueInToolTip(kivui::UI_ControlView &inControl, std::u16string const &inStored)
{
    QWidget *widget = inControl.UI_GetWidget();
    if (!widget) return;
    QVariant base = widget->property(kBaseToolTipProperty);
    if (!base.isValid()) {
        if (inStored.empty()) return;
        base = QString::fromStdU16String(inControl.GetToolTip());
        widget->setProperty(kBaseToolTipProperty, base);
    }
    std::u16string tip = base.toString().toStdU16String();
    if (!inStored.empty()) {
        const std::u16string line = Localizer::Localize(kStoredValueKey, {inStored});
        tip = tip.empty() ? line : tip + u"\n" + line;
    }
    inControl.SetToolTip(tip);
}

// The stored text when the control shows it otherwise, else empty.
std::u16string StoredIfShownOtherwise(GetValueResult inResult, std::string const &inStored,
                                      std::u16string const &inShown)
{
    if (inResult != kivmetadata::kGetValueResult_OneValue || inStored.empty()) return {};
    std::u16string stored = Utf8ToUtf16(inStored);
    return stored == inShown ? std::u16string() : stored;
}

// The status of a control showing the value; `inDefinition` is the value's
// property, looked up already.
ControlStatus StatusOf(Value const &inValue, std::shared_ptr<PropertyDefinition> const &inDefinition,
                       std::optional<ControlDisplayParameter> inDisplay)
{
    enum ReasonToDisable { kNone = 0, kNotEditable = 1, kRefusedByProvider = 2, kUnsupported = 3, kNoProvider = 4 };
    ReasonToDisable reason = kNone;
    if (!inValue.mProvider)
        reason = kNoProvider;
    else if (inValue.mNotEditable)
        reason = kNotEditable;
    else if (!inValue.mProvider->AcceptsPath(inValue, true))
        reason = kRefusedByProvider;
    else if (!IsDefinitionSupportedForWriting(inDefinition))
        reason = kUnsupported;

    if (kivmetadata::IsAllMetadataForcedWritable()) return kControlStatus_Editable;
    switch (reason) {
    case kNone:
        return inDisplay && *inDisplay ? kControlStatus_ReadOnly : kControlStatus_Editable;
    case kNotEditable:
    case kRefusedByProvider:
        return inDisplay ? kControlStatus_ReadOnly : kControlStatus_Disabled;
    case kUnsupported:
    case kNoProvider:
        return kControlStatus_Disabled;
    }
    KIV_ASSERT_MSG(kUnit, "kivmetadataui::QueryControlStatus", false, "Unhandled ReasonToDisable");
    return kControlStatus_Disabled;
}

// Statuses 0 and 1 leave the control restricted, 2 leaves it free; the
// second call decides.
void ApplyStatus(ResolvedValue const &inValue, kivui::UI_ControlView &inControl, GetValueResult inResult)
{
    const ControlStatus status = StatusOf(inValue, inValue.mDefinition, std::nullopt);
    inControl.SetDisabled(status == kControlStatus_Disabled);
    if (status != kControlStatus_Disabled) inControl.SetDisabled(status == kControlStatus_ReadOnly);
    inControl.UI_Show(QueryVisibilityStatus(inValue, inResult));
}

// Begin editing a text that shows several values: what follows the
// "<Multiple Values>" text in the placeholder becomes the value to edit.
void OnTextEditInteraction(kivui::Message *inMessage)
{
    auto *changed = dynamic_cast<kivui::UI_InteractiveControlChangedMessage *>(inMessage);
    if (!changed) return;
    auto *edit = dynamic_cast<kivui::UI_TextEdit *>(changed->GetSource());
    if (!edit) return;
    if (changed->GetChangeMessage() == kivui::UI_InteractiveControlChangedMessage::kBeginEditing) {
        const std::u16string multiple = Localizer::Localize(kEditTextMultipleValues);
        std::u16string const &unknown = edit->GetUnknownStateText();
        // Only a remainder is put in: the begin may come with the first typed
        // character, which must survive.
        if (unknown.size() > multiple.size() && unknown.compare(0, multiple.size(), multiple) == 0)
            edit->SetValue(unknown.substr(multiple.size()), false);
    } else if (changed->GetChangeMessage() == kivui::UI_InteractiveControlChangedMessage::kEndEditing) {
        edit->SetUnknownStateText(std::u16string());
    }
}

void InstallMultipleValuesHandler(kivui::UI_TextEdit &inControl)
{
    QWidget *widget = inControl.UI_GetWidget();
    if (!widget || widget->property(kHandlerInstalledProperty).toBool()) return;
    widget->setProperty(kHandlerInstalledProperty, true);
    inControl.NotifyWhenChangedInteractively(
        std::make_shared<std::function<void(kivui::Message *)>>(&OnTextEditInteraction));
}

// The items EntriesOfText would split an array's text into, without making them.
std::size_t CountEntries(std::u16string const &inText)
{
    std::size_t count = 0;
    bool filled = false;
    for (char16_t const c : inText) {
        if (c == u';') {
            count += filled;
            filled = false;
        } else if (!filled && !QChar::isSpace(c)) {
            filled = true;
        }
    }
    return count + filled;
}

// `inText` shortened for showing, or nothing when it is short enough. The
// text of an array keeps whole items and is followed by their count.
std::optional<std::u16string> Shortened(std::u16string const &inText, bool inArray = false)
{
    if (inText.size() <= kMaxShownLength) return std::nullopt;
    std::size_t length = kMaxShownLength;
    std::size_t const lastItemEnd = inArray ? inText.rfind(u';', length) : std::u16string::npos;
    if (lastItemEnd != std::u16string::npos && lastItemEnd > 0)
        length = lastItemEnd + 1;
    else if (QChar::isHighSurrogate(inText[length - 1]))
        --length;
    QLocale locale;
    if (locale.language() == QLocale::C) locale = QLocale(QLocale::English); // C omits group separators
    std::size_t const count = inArray ? CountEntries(inText) : inText.size();
    return inText.substr(0, length) + (inArray ? u" " : u"") +
           Localizer::Localize(inArray ? kShortenedItemsKey : kShortenedKey,
                               {locale.toString(qlonglong(count)).toStdU16String()});
}

bool IsTextArray(ResolvedValue const &inValue)
{
    std::optional<kivmetadata::PrimitiveType> const &type = inValue.mPrimitiveType;
    return type && (*type == kivmetadata::kPrimitiveType_TextBag || *type == kivmetadata::kPrimitiveType_TextSeq);
}

bool ShowsShortenedValue(kivui::UI_TextEdit const &inControl)
{
    QWidget const *widget = inControl.UI_GetWidget();
    return widget && widget->property(kShortenedProperty).toBool();
}

// A control that shows a shortened value is read-only until it shows a whole
// one again; a control read-only for other reasons stays so.
void MarkShortened(kivui::UI_TextEdit &inControl, bool inShortened)
{
    QWidget *widget = inControl.UI_GetWidget();
    if (!widget) return;
    bool const was = ShowsShortenedValue(inControl);
    if (inShortened && !was && !inControl.IsReadOnlyMode()) {
        inControl.SetReadOnlyMode(true);
        widget->setProperty(kShortenedProperty, true);
    } else if (!inShortened && was) {
        inControl.SetReadOnlyMode(false);
        widget->setProperty(kShortenedProperty, false);
    }
}

void UpdateTextControl(ResolvedValue const &inValue, kivui::UI_TextEdit &inControl)
{
    std::string text;
    const GetValueResult result = ReadString(inValue, text);
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        if (!inControl.IsEditing()) {
            inControl.SetValue(std::u16string(), false);
            inControl.SetUnknownStateText(MultipleValuesText(inValue, kEditTextMultipleValues));
            inControl.SetValueUnknown(true);
        }
        MarkShortened(inControl, false);
    } else {
        std::u16string value = result == kivmetadata::kGetValueResult_OneValue ? Utf8ToUtf16(text) : std::u16string();
        std::optional<std::u16string> shortened = Shortened(value, IsTextArray(inValue));
        inControl.SetValue(shortened ? *shortened : value, false);
        MarkShortened(inControl, shortened.has_value());
    }
    InstallMultipleValuesHandler(inControl);
    ApplyStatus(inValue, inControl, result);
}

// Runs one write inside an update access and records the change when it
// took effect; write failures are silent.
template <typename Write> void WriteBack(Value const &inValue, Write &&inWrite)
{
    if (!inValue.mProvider) return;
    MetaDataUpdateAccess access(inValue.mProvider);
    if (inWrite()) access.AddChange(inValue.mPath);
}

void UpdateTextValue(Value const &inValue, kivui::UI_TextEdit const &inControl)
{
    if (ShowsShortenedValue(inControl)) return;
    const std::u16string text = inControl.GetValue();
    const bool remove = inControl.IsValueUnknown() || text.empty();
    WriteBack(inValue, [&] {
        return remove ? kivmetadata::DeleteValue(inValue) : kivmetadata::SetValue(inValue, Utf16ToUtf8(text));
    });
}

// The items of a text as the metadata model splits arrays.
std::vector<std::u16string> EntriesOfText(ResolvedValue const &inValue, std::u16string const &inText)
{
    std::vector<std::u16string> entries;
    if (!IsTextArray(inValue)) {
        entries.push_back(kivcore::utility::Trim(inText));
        return entries;
    }
    std::size_t start = 0;
    while (start <= inText.size()) {
        std::size_t end = inText.find(u';', start);
        if (end == std::u16string::npos) end = inText.size();
        std::u16string item = kivcore::utility::Trim(std::u16string_view(inText).substr(start, end - start));
        if (!item.empty()) entries.push_back(std::move(item));
        start = end + 1;
    }
    return entries;
}

} // namespace

// ---------------------------------------------------------------- status

ControlStatus QueryControlStatus(Value const &inValue, std::optional<ControlDisplayParameter> inDisplay)
{
    return StatusOf(inValue, kivmetadata::PathEntryDefinition(inValue.mPath), inDisplay);
}

bool QueryVisibilityStatus(Value const &inValue, GetValueResult inResult)
{
    if (inResult == kivmetadata::kGetValueResult_OneValue || inResult == kivmetadata::kGetValueResult_SeveralValues)
        return true;
    return inValue.mProvider && inValue.mProvider->AcceptsPath(inValue, false);
}

// ---------------------------------------------------------------- showing and writing, by kind

namespace {

void ShowValue(ResolvedValue const &inValue, kivui::UI_TextEdit &inControl)
{
    UpdateTextControl(inValue, inControl);
}

void ShowValue(ResolvedValue const &inValue, kivui::UI_Checkbox &inControl)
{
    bool checked = false;
    GetValueResult result = kivmetadata::kGetValueResult_Unreadable;
    if (inValue.mProvider) {
        MetaDataReadAccess access(inValue.mProvider);
        kivmetadata::GetValue(inValue, checked, result);
    }
    if (result == kivmetadata::kGetValueResult_OneValue)
        inControl.SetValue(checked ? kivui::UI_Checkbox::kChecked : kivui::UI_Checkbox::kUnchecked);
    else
        inControl.SetValue(kivui::UI_Checkbox::kMixed);
    ApplyStatus(inValue, inControl, result);
}

void ShowValue(ResolvedValue const &inValue, UI_DateTextEdit &inControl)
{
    std::string text;
    const GetValueResult result = ReadString(inValue, text);
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        if (!inControl.IsEditing()) {
            inControl.SetValue(std::u16string());
            inControl.SetUnknownStateText(MultipleValuesText(inValue, kStaticTextMultipleValues));
            inControl.SetValueUnknown(true);
        }
    } else if (!inControl.IsEditing()) {
        inControl.SetValue(result == kivmetadata::kGetValueResult_OneValue ? Utf8ToUtf16(text) : std::u16string());
        // The field shows dates normalised; what is stored may read otherwise.
        ShowStoredValueInToolTip(inControl, StoredIfShownOtherwise(result, text, inControl.GetValue()));
    }
    ApplyStatus(inValue, inControl, result);
}

void ShowValue(ResolvedValue const &inValue, kivui::UI_StaticText &inControl)
{
    std::string text;
    const GetValueResult result = ReadString(inValue, text);
    std::shared_ptr<PropertyDefinition> const &definition = inValue.mDefinition;
    const bool address =
        definition && (definition->mTypeId == "uri" || definition->mTypeId == "url" || definition->mTypeId == "xpath");
    inControl.SetTextMode(address ? kTextModeAddress : kTextModePlain);
    std::u16string shownText;
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        inControl.SetText(MultipleValuesText(inValue, kStaticTextMultipleValues));
    } else {
        // A view item's own choices, when the factory kept them, come first.
        std::u16string shown;
        bool found = false;
        if (auto choices = GetChoiceData(inControl)) {
            for (auto const &choice : *choices) {
                if (choice.mRawValue == text) {
                    shown = LocalizeIfKey(choice.mDisplay);
                    found = true;
                    break;
                }
            }
        }
        if (!found) {
            shown = ChoiceDisplayFromRawValue(definition, text);
            // A value that no choice names is shown as people read it.
            if (definition && shown == Utf8ToUtf16(text)) {
                if (auto formatted = FormatForDisplay(DisplayFormOf(*definition), text)) shown = std::move(*formatted);
            }
        }
        std::optional<std::u16string> shortened = Shortened(shown);
        inControl.SetText(shortened ? *shortened : shown);
        shownText = std::move(shown);
    }
    std::u16string stored = StoredIfShownOtherwise(result, text, shownText);
    if (auto shortened = Shortened(stored)) stored = std::move(*shortened);
    ShowStoredValueInToolTip(inControl, stored);
    ApplyStatus(inValue, inControl, result);
}

void ShowValue(ResolvedValue const &inValue, kivui::UI_Popup &inControl)
{
    const auto choices = GetChoiceData(inControl);
    if (!choices) {
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::UpdateControl", false,
                       "UpdateControl: can't retrieve user data from UI_Popup");
        return;
    }
    std::string raw;
    const GetValueResult result = ReadString(inValue, raw);
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        inControl.SetValueUnknown(true);
    } else {
        int index = -1;
        if (result == kivmetadata::kGetValueResult_OneValue) {
            for (std::size_t i = 0; i < choices->size(); ++i) {
                if ((*choices)[i].mRawValue == raw) {
                    index = static_cast<int>(i);
                    break;
                }
            }
        }
        if (index >= 0) {
            inControl.SetValue(index);
        } else {
            // No choice matches: show the raw value's text (empty when absent).
            const std::u16string shown = result == kivmetadata::kGetValueResult_OneValue
                                             ? ChoiceDisplayFromRawValue(inValue.mDefinition, raw)
                                             : std::u16string();
            inControl.SetValue(-1);
            inControl.SetValueString(shown);
        }
    }
    ApplyStatus(inValue, inControl, result);
}

void ShowValue(ResolvedValue const &inValue, kivui::UI_HotTextNumber &inControl)
{
    double number = 0;
    GetValueResult result = kivmetadata::kGetValueResult_Unreadable;
    if (inValue.mProvider) {
        MetaDataReadAccess access(inValue.mProvider);
        kivmetadata::GetValue(inValue, number, result);
    }
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        inControl.SetValueUnknown(true);
    } else {
        inControl.SetValue(result == kivmetadata::kGetValueResult_OneValue ? number
                                                                           : std::numeric_limits<double>::quiet_NaN());
    }
    ApplyStatus(inValue, inControl, result);
}

void ShowValue(ResolvedValue const &inValue, kivui::UI_StarRating &inControl)
{
    double rating = 0;
    GetValueResult result = kivmetadata::kGetValueResult_Unreadable;
    if (inValue.mProvider) {
        MetaDataReadAccess access(inValue.mProvider);
        kivmetadata::GetValue(inValue, rating, result);
    }
    if (result == kivmetadata::kGetValueResult_SeveralValues) {
        inControl.SetValueUnknown(true);
    } else {
        inControl.SetValue(result == kivmetadata::kGetValueResult_OneValue ? rating : 0.0);
    }
    ApplyStatus(inValue, inControl, result);
}

// ---------------------------------------------------------------- UpdateValue

void WriteValue(ResolvedValue const &inValue, kivui::UI_TextEdit &inControl)
{
    UpdateTextValue(inValue, inControl);
}

void WriteValue(ResolvedValue const &inValue, kivui::UI_AutoCompleteTextEdit &inControl)
{
    UpdateTextValue(inValue, inControl);
    // The next completion offers what was just typed.
    if (!inControl.IsValueUnknown() && (IsAutoCompletionEnabled() || !inControl.GetEntryList().empty())) {
        const std::u16string text = inControl.GetValue();
        if (!text.empty()) {
            const std::string key = MRUKeyForPath(inValue.mPath);
            kivmetadata::UpdateMRULists(key, EntriesOfText(inValue, text));
            inControl.SetEntryList(kivmetadata::GetMRUList(key));
        }
    }
}

void WriteValue(ResolvedValue const &inValue, UI_DateTextEdit &inControl)
{
    const std::u16string text = inControl.GetValue();
    if (inControl.IsValueUnknown() || text.empty()) {
        WriteBack(inValue, [&] { return kivmetadata::DeleteValue(inValue); });
    } else {
        kivmetadata::XMP_DateTime date;
        if (!ParseDateTimeStr(text, date)) return; // refused by the validation already
        WriteBack(inValue, [&] { return kivmetadata::SetValue(inValue, kivmetadata::ConvertFromDate(date)); });
    }
    // The binding does not show its own writes again: the tooltip names
    // what is stored now.
    std::string stored;
    const GetValueResult result = ReadString(inValue, stored);
    ShowStoredValueInToolTip(inControl, StoredIfShownOtherwise(result, stored, inControl.GetValue()));
}

void WriteValue(ResolvedValue const &inValue, kivui::UI_Checkbox &inControl)
{
    const auto state = inControl.GetValue();
    WriteBack(inValue, [&] {
        if (state == kivui::UI_Checkbox::kMixed || inControl.IsValueUnknown()) return kivmetadata::DeleteValue(inValue);
        return kivmetadata::SetValue(inValue, state == kivui::UI_Checkbox::kChecked);
    });
}

void WriteValue(ResolvedValue const &inValue, kivui::UI_HotTextNumber &inControl)
{
    const double number = inControl.GetValue();
    WriteBack(inValue, [&] {
        if (inControl.IsValueUnknown() || std::isnan(number)) return kivmetadata::DeleteValue(inValue);
        std::optional<kivmetadata::PrimitiveType> const &primitiveType = inValue.mPrimitiveType;
        // The integer type is the one just before the real type.
        constexpr auto kInteger = static_cast<kivmetadata::PrimitiveType>(kivmetadata::kPrimitiveType_Real - 1);
        if (primitiveType && *primitiveType == kInteger)
            return kivmetadata::SetValue(inValue, static_cast<std::int64_t>(std::trunc(number)));
        return kivmetadata::SetValue(inValue, number);
    });
}

void WriteValue(ResolvedValue const &inValue, kivui::UI_StarRating &inControl)
{
    const double value = inControl.GetValue();
    WriteBack(inValue, [&] {
        // No stars removes the property.
        if (inControl.IsValueUnknown() || value == 0) return kivmetadata::DeleteValue(inValue);
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::UpdateValue", (value == static_cast<std::int64_t>(value)),
                       "Breaking backward compatibility with GX6");
        return kivmetadata::SetMinimalFloatValue(inValue, value);
    });
}

void WriteValue(ResolvedValue const &inValue, kivui::UI_Popup &inControl)
{
    const auto choices = GetChoiceData(inControl);
    if (!choices) {
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::UpdateValue", false,
                       "UpdateValue:  can't retrieve user data from UI_Popup");
        return;
    }
    const int index = inControl.GetValue();
    if (index < 0 && inControl.GetPopupType() == 1) {
        // An editable popup holding a typed text that is no choice.
        const std::u16string typed = inControl.GetValueString();
        WriteBack(inValue, [&] {
            return typed.empty() ? kivmetadata::DeleteValue(inValue)
                                 : kivmetadata::SetValue(inValue, Utf16ToUtf8(typed));
        });
        return;
    }
    KIV_ASSERT(kUnit, "kivmetadataui::UpdateValue", choices->size() > (unsigned int)index);
    if (index < 0 || choices->size() <= static_cast<std::size_t>(index)) return;
    WriteBack(inValue,
              [&] { return kivmetadata::SetValue(inValue, (*choices)[static_cast<std::size_t>(index)].mRawValue); });
}

void WriteValue(ResolvedValue const &, kivui::UI_StaticText &) {}

} // namespace

// ---------------------------------------------------------------- UpdateControl, UpdateValue

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_TextEdit> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_URLEdit> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_DragableTextEdit> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_Checkbox> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<UI_DateTextEdit> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_StaticText> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_Popup> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_HotTextNumber> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateControl(Value const &inValue, ControlPtr<kivui::UI_StarRating> const &inControl)
{
    if (inControl) ShowValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_TextEdit> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_URLEdit> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_DragableTextEdit> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<UI_DateTextEdit> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_Checkbox> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_HotTextNumber> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_StarRating> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_Popup> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

void UpdateValue(Value const &inValue, ControlPtr<kivui::UI_StaticText> const &inControl)
{
    if (inControl) WriteValue(ResolveValue(inValue), *inControl);
}

// ---------------------------------------------------------------- read-only, disconnect

void SetControlReadOnly(ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl)
{
    if (inControl) inControl->SetReadOnlyMode(true);
}

void SetControlReadOnly(ControlPtr<UI_DateTextEdit> const &inControl)
{
    if (inControl) inControl->SetReadOnlyMode(true);
}

void SetControlReadOnly(ControlPtr<kivui::UI_TextEdit> const &inControl)
{
    if (inControl) inControl->SetReadOnlyMode(true);
}

void SetControlReadOnly(ControlPtr<kivui::UI_URLEdit> const &inControl)
{
    if (inControl) inControl->SetReadOnlyMode(true);
}

void Disconnect(std::shared_ptr<std::function<void(kivui::Message *)>> const &inMessageHandler,
                std::shared_ptr<std::function<void(kivmetadata::XMPMeta *)>> const &inMetaHandler,
                std::shared_ptr<std::function<void()>> const &inHandler,
                std::shared_ptr<std::function<void(kivui::Message *)>> const &inMessageHandler2)
{
    if (inMessageHandler && *inMessageHandler) *inMessageHandler = nullptr;
    if (inMetaHandler && *inMetaHandler) *inMetaHandler = nullptr;
    if (inHandler && *inHandler) *inHandler = nullptr;
    if (inMessageHandler2 && *inMessageHandler2) *inMessageHandler2 = nullptr;
}

// ---------------------------------------------------------------- helpers

bool IsPropertySupportedForWriting(Path const &inPath)
{
    return IsDefinitionSupportedForWriting(kivmetadata::PathEntryDefinition(inPath));
}

bool IsDefinitionSupportedForWriting(std::shared_ptr<PropertyDefinition> const &inDefinition)
{
    std::shared_ptr<PropertyDefinition> const &definition = inDefinition; // the name the assertion is known by
    KIV_ASSERT("src/ControlFactory", "kivmetadataui::IsPropertySupportedForWriting", definition);
    if (!definition) return false;
    // Deliberately only this type: its text form is not safe to edit.
    return definition->mTypeId != "rational";
}

ResolvedValue ResolveValue(Value const &inValue)
{
    return {inValue, kivmetadata::PathEntryDefinition(inValue.mPath), kivmetadata::PrimitiveTypeOfPath(inValue.mPath)};
}

std::u16string LocalizeIfKey(std::string const &inText)
{
    if (inText.rfind("$$$/", 0) == 0) return kivcore::config::Localizer::Localize(inText);
    return Utf8ToUtf16(inText);
}

std::u16string ChoiceDisplayFromRawValue(std::shared_ptr<PropertyDefinition> const &inDefinition,
                                         std::string const &inRawValue)
{
    KIV_ASSERT("src/BindControl", "kivmetadataui::ChoiceDisplayFromRawValue", inDefinition);
    if (!inDefinition) return Utf8ToUtf16(inRawValue);
    const std::vector<kivmetadata::Choice> choices = kivmetadata::DefinitionChoices(*inDefinition);
    for (auto const &choice : choices) {
        if (choice.mRawValue == inRawValue) return LocalizeIfKey(choice.mDisplay);
    }
    return Utf8ToUtf16(inRawValue);
}

void SetChoiceData(kivui::UI_ControlView &inControl, std::vector<kivmetadata::Choice> const &inChoices)
{
    QWidget *widget = inControl.UI_GetWidget();
    if (!widget) return;
    QStringList raw, display;
    for (auto const &choice : inChoices) {
        raw.push_back(QString::fromStdString(choice.mRawValue));
        display.push_back(QString::fromStdString(choice.mDisplay));
    }
    widget->setProperty(kChoiceRawProperty, raw);
    widget->setProperty(kChoiceDisplayProperty, display);
}

std::optional<std::vector<kivmetadata::Choice>> GetChoiceData(kivui::UI_ControlView const &inControl)
{
    QWidget const *widget = inControl.UI_GetWidget();
    if (!widget) return std::nullopt;
    const QVariant raw = widget->property(kChoiceRawProperty);
    if (!raw.isValid()) return std::nullopt;
    const QStringList rawValues = raw.toStringList();
    const QStringList displays = widget->property(kChoiceDisplayProperty).toStringList();
    std::vector<kivmetadata::Choice> choices;
    choices.reserve(static_cast<std::size_t>(rawValues.size()));
    for (qsizetype i = 0; i < rawValues.size(); ++i)
        choices.push_back(
            {rawValues[i].toStdString(), i < displays.size() ? displays[i].toStdString() : std::string()});
    return choices;
}

bool IsAutoCompletionEnabled()
{
    if (sAutoCompletionEnabled) return *sAutoCompletionEnabled;
    if (auto *prefs = kivui::utility::PrefManager::GetPrefManager())
        return prefs->GetBool(kAutoCompletionPreference).value_or(true);
    return true;
}

void SetAutoCompletionEnabled(bool inEnabled)
{
    sAutoCompletionEnabled = inEnabled;
}

std::string MRUKeyForPath(Path const &inPath)
{
    return inPath.mPath;
}

// ---------------------------------------------------------------- any kind

std::optional<ControlKind> KindOfControl(kivui::UI_ControlView const *inControl)
{
    // The one place that tells kinds apart; most derived first, since
    // several derive from UI_TextEdit.
    if (!inControl) return std::nullopt;
    if (dynamic_cast<UI_DateTextEdit const *>(inControl)) return ControlKind::kDateText;
    if (dynamic_cast<kivui::UI_AutoCompleteTextEdit const *>(inControl)) return ControlKind::kAutoCompleteText;
    if (dynamic_cast<kivui::UI_URLEdit const *>(inControl)) return ControlKind::kURL;
    if (dynamic_cast<kivui::UI_DragableTextEdit const *>(inControl)) return ControlKind::kDragableText;
    if (dynamic_cast<kivui::UI_TextEdit const *>(inControl)) return ControlKind::kText;
    if (dynamic_cast<kivui::UI_StaticText const *>(inControl)) return ControlKind::kStaticText;
    if (dynamic_cast<kivui::UI_Checkbox const *>(inControl)) return ControlKind::kCheckbox;
    if (dynamic_cast<kivui::UI_Popup const *>(inControl)) return ControlKind::kPopup;
    if (dynamic_cast<kivui::UI_HotTextNumber const *>(inControl)) return ControlKind::kNumber;
    if (dynamic_cast<kivui::UI_StarRating const *>(inControl)) return ControlKind::kRating;
    return std::nullopt;
}

void UpdateControlOfKind(ResolvedValue const &inValue, ControlKind inKind, kivui::UI_ControlView *inControl)
{
    VisitControl(inKind, inControl, [&inValue](auto *inConcrete) { ShowValue(inValue, *inConcrete); });
}

void UpdateValueOfKind(ResolvedValue const &inValue, ControlKind inKind, kivui::UI_ControlView *inControl)
{
    VisitControl(inKind, inControl, [&inValue](auto *inConcrete) { WriteValue(inValue, *inConcrete); });
}

bool UpdateControlOfAnyKind(ResolvedValue const &inValue, kivui::UI_ControlView *inControl)
{
    std::optional<ControlKind> const kind = KindOfControl(inControl);
    if (kind) UpdateControlOfKind(inValue, *kind, inControl);
    return kind.has_value();
}

} // namespace kivmetadataui

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/RefCounted.h>
#include <kivmetadata/GetValueResult.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace kivmetadata {
struct Value;
class XMPMeta;
} // namespace kivmetadata

namespace kivui {
class Message;
class UI_AutoCompleteTextEdit;
class UI_Checkbox;
class UI_DragableTextEdit;
class UI_HotTextNumber;
class UI_Popup;
class UI_StarRating;
class UI_StaticText;
class UI_TextEdit;
class UI_URLEdit;
} // namespace kivui

namespace kivmetadataui {

class UI_DateTextEdit;

template <typename T> using ControlPtr = kivcore::utility::IntrusivePtr<T>;

// How far a bound control may be edited; the lower, the more restricted.
enum ControlStatus : std::uint8_t {
    kControlStatus_Disabled = 0,
    kControlStatus_ReadOnly = 1,
    kControlStatus_Editable = 2,
};

// Optional hint to QueryControlStatus: true asks for the read-only status
// where the control would otherwise be editable or disabled.
using ControlDisplayParameter = bool;

// Shows the value in the control, then applies QueryControlStatus and the
// visibility rule of QueryVisibilityStatus to it.
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_Checkbox> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<UI_DateTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_DragableTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_Popup> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_StaticText> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_TextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_URLEdit> const &inControl);
// The number and rating controls that the factory makes.
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_HotTextNumber> const &inControl);
KIVMETADATAUI_EXPORT void UpdateControl(kivmetadata::Value const &inValue,
                                        ControlPtr<kivui::UI_StarRating> const &inControl);

// Writes the control's state back to the value's provider, recording the
// change; an unknown state, an empty text or no stars delete the property.
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_Checkbox> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_DragableTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_HotTextNumber> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue, ControlPtr<kivui::UI_Popup> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_StarRating> const &inControl);
// Does nothing: a static text is never written back.
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_StaticText> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_TextEdit> const &inControl);
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue,
                                      ControlPtr<kivui::UI_URLEdit> const &inControl);
// Writes the parsed date as ISO 8601 (the shown text has blanks where the
// stored form has "T"); a text that does not parse writes nothing.
KIVMETADATAUI_EXPORT void UpdateValue(kivmetadata::Value const &inValue, ControlPtr<UI_DateTextEdit> const &inControl);

// 2 fully editable; 1 and 0 restricted.
KIVMETADATAUI_EXPORT ControlStatus QueryControlStatus(kivmetadata::Value const &inValue,
                                                      std::optional<ControlDisplayParameter> inDisplay = std::nullopt);

// Whether a control for the value is shown, given the result of reading it.
KIVMETADATAUI_EXPORT bool QueryVisibilityStatus(kivmetadata::Value const &inValue,
                                                kivmetadata::GetValueResult inResult);

KIVMETADATAUI_EXPORT void SetControlReadOnly(ControlPtr<kivui::UI_AutoCompleteTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void SetControlReadOnly(ControlPtr<UI_DateTextEdit> const &inControl);
KIVMETADATAUI_EXPORT void SetControlReadOnly(ControlPtr<kivui::UI_TextEdit> const &inControl);
KIVMETADATAUI_EXPORT void SetControlReadOnly(ControlPtr<kivui::UI_URLEdit> const &inControl);

// Empties each callable in place. The toolkit and the provider hold the same
// shared objects, so this cuts the binding without unregistering anything.
KIVMETADATAUI_EXPORT void Disconnect(std::shared_ptr<std::function<void(kivui::Message *)>> const &inMessageHandler,
                                     std::shared_ptr<std::function<void(kivmetadata::XMPMeta *)>> const &inMetaHandler,
                                     std::shared_ptr<std::function<void()>> const &inHandler,
                                     std::shared_ptr<std::function<void(kivui::Message *)>> const &inMessageHandler2);

} // namespace kivmetadataui

#pragma once
// Internal to kivmetadataui: helpers of the value binding, which the control
// factory uses too (never the reverse). Not API; exported only so that the
// library's tests reach them.

#include "kivmetadataui_test_export_p.h"

#include <kivmetadata/Choice.h>
#include <kivmetadata/PrimitiveType.h>
#include <kivmetadata/Value.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kivmetadata {
struct Path;
struct PropertyDefinition;
} // namespace kivmetadata

namespace kivui {
class UI_ControlView;
} // namespace kivui

namespace kivmetadataui {

enum class ControlKind : std::uint8_t;

// A value together with what the binding needs of its property, looked up
// once, when its control is made, instead of at each showing and writing.
struct ResolvedValue : kivmetadata::Value {
    std::shared_ptr<kivmetadata::PropertyDefinition> mDefinition;
    std::optional<kivmetadata::PrimitiveType> mPrimitiveType;
};
ResolvedValue ResolveValue(kivmetadata::Value const &inValue);

// False exactly for properties whose definition names the type id
// "rational" (their text form cannot be edited safely); asserts
// "definition" and answers false for a path without definition.
KIVMETADATAUI_TEST_EXPORT bool IsPropertySupportedForWriting(kivmetadata::Path const &inPath);
bool IsDefinitionSupportedForWriting(std::shared_ptr<kivmetadata::PropertyDefinition> const &inDefinition);

// The shown text of a raw value: the display text of the matching choice of
// the definition (or of its type), else the raw value itself.
KIVMETADATAUI_TEST_EXPORT std::u16string
ChoiceDisplayFromRawValue(std::shared_ptr<kivmetadata::PropertyDefinition> const &inDefinition,
                          std::string const &inRawValue);

// A localisation key with default is localised; any other text is taken as it is.
KIVMETADATAUI_TEST_EXPORT std::u16string LocalizeIfKey(std::string const &inText);

// The choice data of a popup (or of a static text showing choices): the raw
// values in item order. Popups made without it have none.
KIVMETADATAUI_TEST_EXPORT void SetChoiceData(kivui::UI_ControlView &inControl,
                                             std::vector<kivmetadata::Choice> const &inChoices);
KIVMETADATAUI_TEST_EXPORT std::optional<std::vector<kivmetadata::Choice>>
GetChoiceData(kivui::UI_ControlView const &inControl);

// Whether auto-completion from most-recently-used entries is on (the
// "enableAutoCompletion" preference, on by default).
KIVMETADATAUI_TEST_EXPORT bool IsAutoCompletionEnabled();
KIVMETADATAUI_TEST_EXPORT void SetAutoCompletionEnabled(bool inEnabled);

// The key of a property's most-recently-used entries.
KIVMETADATAUI_TEST_EXPORT std::string MRUKeyForPath(kivmetadata::Path const &inPath);

// Shows the value through the UpdateControl of the control's kind, or
// writes the control back through the UpdateValue of its kind.
void UpdateControlOfKind(ResolvedValue const &inValue, ControlKind inKind, kivui::UI_ControlView *inControl);
void UpdateValueOfKind(ResolvedValue const &inValue, ControlKind inKind, kivui::UI_ControlView *inControl);

// The same for a control of any kind made by the built-in factory; false
// for a control of unknown kind.
bool UpdateControlOfAnyKind(ResolvedValue const &inValue, kivui::UI_ControlView *inControl);

} // namespace kivmetadataui

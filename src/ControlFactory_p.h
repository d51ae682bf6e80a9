#pragma once
// Internal to kivmetadataui: helpers of the control factory, which chooses
// the control for a value (ControlBinding binds it). Not API;
// exported only so that the library's tests reach them.

#include "BindControl_p.h"
#include "kivmetadataui_test_export_p.h"

#include <kivmetadata/Choice.h>
#include <kivmetadata/PrimitiveType.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kivmetadata {
struct Path;
struct PropertyDefinition;
struct Value;
struct ViewItem;
} // namespace kivmetadata

namespace kivui {
class UI_ControlView;
class UI_Popup;
class UI_StaticText;
} // namespace kivui

namespace kivmetadataui {

// Whether the definition's primitive type, or that of its type id, is `inType`.
KIVMETADATAUI_TEST_EXPORT bool IsTypeBasedOnPrimitiveType(kivmetadata::PropertyDefinition const &inDefinition,
                                                          kivmetadata::PrimitiveType inType);

// The view item's own choices, else those of its property's definition (or
// of the definition's type).
KIVMETADATAUI_TEST_EXPORT std::vector<kivmetadata::Choice> ChoicesFromViewItem(kivmetadata::ViewItem const &inViewItem);

// "Label :: Description" of a property, localised.
KIVMETADATAUI_TEST_EXPORT std::u16string
ComposeTooltip(std::shared_ptr<kivmetadata::PropertyDefinition> const &inDefinition);

// Fills a popup with the choices (display texts localised) and sets its choice data.
KIVMETADATAUI_TEST_EXPORT void FillPopup(kivui::UI_Popup &inPopup, std::vector<kivmetadata::Choice> const &inChoices);

} // namespace kivmetadataui

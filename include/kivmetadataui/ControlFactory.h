#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/RefCounted.h>

#include <functional>
#include <memory>

namespace kivmetadata {
struct Path;
struct Value;
struct ViewItem;
} // namespace kivmetadata

namespace kivui {
class Message;
class UI_Node;
} // namespace kivui

namespace kivmetadataui {

class Control;

// Builds the control that shows `inValue` and binds it: the value is shown
// at once, every user edit is written back to the value's provider, and the
// control follows later changes of the provider. The control's view is
// appended to `inParent` when that is a container. `inOnChanged` is called
// after each edit has been written back; `inOnSizeChanged` when a control
// changes its own height (the multi-line edit). A custom creator installed
// with RegisterControlCreator is asked first. Empty when the value's
// property has no definition.
KIVMETADATAUI_EXPORT std::shared_ptr<Control>
ControlFactory(kivmetadata::Value const &inValue, std::shared_ptr<kivmetadata::ViewItem> inViewItem,
               kivcore::utility::IntrusivePtr<kivui::UI_Node> inParent, bool inReadOnly,
               std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
               std::shared_ptr<std::function<void()>> const &inOnSizeChanged);

// The same with a view item made from the value's path.
KIVMETADATAUI_EXPORT std::shared_ptr<Control>
ControlFactory(kivmetadata::Value const &inValue, kivcore::utility::IntrusivePtr<kivui::UI_Node> inParent,
               bool inReadOnly, std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
               std::shared_ptr<std::function<void()>> const &inOnSizeChanged);

// An editable control without view item and without callbacks.
KIVMETADATAUI_EXPORT std::shared_ptr<Control>
InlineControlFactory(kivmetadata::Value const &inValue, kivcore::utility::IntrusivePtr<kivui::UI_Node> inParent);

// Shows the value again in a control made by the built-in factory. Refused
// (with an assertion) while a custom creator is installed: its controls are
// of unknown kind.
KIVMETADATAUI_EXPORT void RefreshControl(kivmetadata::Value const &inValue, std::shared_ptr<Control> const &inControl,
                                         bool inFlag);

// Hides the property from every view built by this client.
KIVMETADATAUI_EXPORT void ExcludePath(kivmetadata::Path const &inPath);

} // namespace kivmetadataui

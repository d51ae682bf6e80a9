#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivcore/RefCounted.h>

#include <functional>
#include <memory>

namespace kivmetadata {
struct Value;
struct ViewItem;
} // namespace kivmetadata

namespace kivui {
class UI_Node;
}

namespace kivmetadataui {

class Control;

// A host's own control maker: given the value, its view item and the parent
// node, returns the control, or an empty pointer to let the built-in rules
// decide. An empty ControlCreator means that none is installed.
using ControlCreator =
    std::function<std::shared_ptr<Control>(kivmetadata::Value const &, std::shared_ptr<kivmetadata::ViewItem>,
                                           kivcore::utility::IntrusivePtr<kivui::UI_Node>)>;

// Installs the one module-wide creator, replacing (and destroying) the
// previous one; an empty creator uninstalls. The argument is moved from.
KIVMETADATAUI_EXPORT void RegisterControlCreator(ControlCreator creator);

// A copy of the installed creator (empty when none). Asserts when the
// library has not been initialised, and answers all the same.
KIVMETADATAUI_EXPORT ControlCreator RegisteredControlCreator();

} // namespace kivmetadataui

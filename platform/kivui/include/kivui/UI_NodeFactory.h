#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/RefCounted.h>

#include <functional>
#include <string>
#include <vector>

namespace kivui {

class UI_Node;
namespace drawbot {
class SupplierInterface;
}

// Makes nodes by class name. UI archives (Qt Designer .ui files) name kivui
// controls by their qualified class ("kivui::UI_Popup"); loading an archive
// makes each such widget through the node registered here, so the archive's
// controls are real toolkit controls. The toolkit registers its own
// controls; libraries add theirs ("kivmetadataui::UI_DateTextEdit").
class KIVUI_EXPORT UI_NodeFactory {
public:
    using Creator = std::function<kivcore::utility::IntrusivePtr<UI_Node>(drawbot::SupplierInterface *)>;
    // Applies an archive's "text" property to a node made by Creator.
    using TextSetter = std::function<void(UI_Node &, std::u16string const &)>;

    static void Register(std::string const &className, Creator creator, TextSetter textSetter = {});
    static bool IsRegistered(std::string const &className);
    // Null when no creator is registered for the class.
    static kivcore::utility::IntrusivePtr<UI_Node> Create(std::string const &className,
                                                          drawbot::SupplierInterface *supplier);
    // False when the class has no text setter.
    static bool SetText(std::string const &className, UI_Node &node, std::u16string const &text);
    static std::vector<std::string> RegisteredClassNames();
};

} // namespace kivui

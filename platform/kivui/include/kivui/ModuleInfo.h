#pragma once

#include <kivui/kivui_export.h>

namespace kivui::ui {

// The record through which the toolkit asks a library to register its skins.
// A library derives from it; every live ModuleInfo is known to the skin
// manager, which calls Initialize() when the skin system starts and after
// each change of look (so skins of the new look get registered).
class KIVUI_EXPORT ModuleInfo {
public:
    virtual void Initialize() = 0;
    virtual ~ModuleInfo();

protected:
    ModuleInfo();
    ModuleInfo(ModuleInfo const &);
    ModuleInfo &operator=(ModuleInfo const &);
};

} // namespace kivui::ui

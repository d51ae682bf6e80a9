#include <kivui/ModuleInfo.h>

#include <kivui/SkinManager.h>

namespace kivui::ui {

// Registration only: Initialize() is virtual and cannot run from the base
// constructor; the skin manager calls it at start and on each change of look.
ModuleInfo::ModuleInfo()
{
    skins::core::SkinManager::RegisterModuleInfo(this, false);
}

ModuleInfo::ModuleInfo(ModuleInfo const &)
{
    skins::core::SkinManager::RegisterModuleInfo(this, false);
}

ModuleInfo &ModuleInfo::operator=(ModuleInfo const &)
{
    return *this;
}

ModuleInfo::~ModuleInfo()
{
    skins::core::SkinManager::UnregisterModuleInfo(this);
}

} // namespace kivui::ui

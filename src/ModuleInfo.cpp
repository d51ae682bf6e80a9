#include <kivmetadataui/ModuleInfo.h>

#include "V5DateTextEditSkin.h"
#include "V7DateTextEditSkin.h"

#include <kivcore/Exceptions.h>
#include <kivui/SkinManager.h>
#include <kivui/SkinSet.h>
#include <kivui/SkinSingleton.h>
#include <kivui/SkinVersion.h>

#include <map>
#include <memory>
#include <string>

namespace kivmetadataui {
namespace {

using kivui::skins::core::SkinManager;
using kivui::skins::core::SkinSet;
using kivui::skins::core::SkinVersion;

std::unique_ptr<ModuleInfo> sInstance;

template <typename SkinT> void AddSkinToSet(char const *inSetName)
{
    SkinSet *set = SkinManager::RetrieveSet(inSetName);
    if (!set) kivcore::config::DoThrowNullPtrException("kivui::skins::core::SkinSet");
    SkinT const *skin = kivui::skins::SkinSingleton<SkinT>::Get();
    std::map<std::string, std::string> skins;
    skins.emplace(SkinT::kTypeName, skin ? skin->GetDescription() : std::string());
    set->AddSkinsToSet(skins);
}

} // namespace

ModuleInfo::ModuleInfo() = default;
ModuleInfo::~ModuleInfo() = default;
ModuleInfo::ModuleInfo(ModuleInfo const &inOther) : kivui::ui::ModuleInfo(inOther) {}

ModuleInfo &ModuleInfo::operator=(ModuleInfo const &inOther)
{
    kivui::ui::ModuleInfo::operator=(inOther);
    return *this;
}

ModuleInfo *ModuleInfo::Get()
{
    if (!sInstance) {
        kivui::skins::SkinSingleton<skins::v5::V5DateTextEditSkin>::Create();
        kivui::skins::SkinSingleton<skins::v7::V7DateTextEditSkin>::Create();
        sInstance.reset(new ModuleInfo());
        // The base registered the record while it was still only a base;
        // now that it is whole, the toolkit may initialise it.
        SkinManager::RegisterModuleInfo(sInstance.get(), true);
    }
    return sInstance.get();
}

void ModuleInfo::Initialize()
{
    const SkinVersion current = SkinManager::GetSkinVersion();
    if (kivui::skin::AreThemeFeaturesAvailable(current, SkinVersion::kV5))
        AddSkinToSet<skins::v5::V5DateTextEditSkin>("V5");
    if (kivui::skin::AreThemeFeaturesAvailable(current, SkinVersion::kV7))
        AddSkinToSet<skins::v7::V7DateTextEditSkin>("V7");
}

} // namespace kivmetadataui

#include <kivui/SkinManager.h>

#include <kivui/ModuleInfo.h>
#include <kivui/Skin.h>
#include <kivui/SkinSet.h>
#include <kivui/SkinSingleton.h>

#include "skins/BaseSkins_p.h"
#include "skins/SkinStyle_p.h"

#include <QApplication>
#include <QFont>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kivui::skins {

Skin::~Skin() = default;

namespace detail {
namespace {
std::map<std::string, std::shared_ptr<void>> &SingletonRegistry()
{
    static std::map<std::string, std::shared_ptr<void>> registry;
    return registry;
}
} // namespace

void *FindSkinSingleton(char const *typeName)
{
    auto &registry = SingletonRegistry();
    auto const it = registry.find(typeName);
    return it == registry.end() ? nullptr : it->second.get();
}

void *StoreSkinSingleton(char const *typeName, std::shared_ptr<void> instance)
{
    auto [it, inserted] = SingletonRegistry().try_emplace(typeName, std::move(instance));
    return it->second.get();
}

void DestroySkinSingleton(char const *typeName)
{
    SingletonRegistry().erase(typeName);
}
} // namespace detail

namespace core {
namespace {

constexpr char kAdoptedProperty[] = "kivSkinAdopted";

struct State {
    SkinVersion version = SkinVersion::kV7;
    bool started = false;
    int generation = 0;
    std::vector<std::unique_ptr<SkinSet>> sets;
    std::vector<ui::ModuleInfo *> modules;

    State()
    {
        auto v5 = std::make_unique<SkinSet>("V5");
        v5->AddSkinsToSet({{detail::kV5BaseSkinKey, detail::BaseSkinDescription(SkinVersion::kV5)}});
        auto v7 = std::make_unique<SkinSet>("V7");
        v7->AddSkinsToSet({{detail::kV7BaseSkinKey, detail::BaseSkinDescription(SkinVersion::kV7)}});
        sets.push_back(std::move(v5));
        sets.push_back(std::move(v7));
    }
};

State &Global()
{
    // Never destroyed: module records of other libraries unregister from their
    // own static destructors, which may run after this one's would have.
    static State *const state = new State;
    return *state;
}

void InitializeModules()
{
    // Copy: an Initialize() may create or destroy module records.
    std::vector<ui::ModuleInfo *> const modules = Global().modules;
    for (ui::ModuleInfo *info : modules) {
        auto const &live = Global().modules;
        if (std::find(live.begin(), live.end(), info) != live.end()) info->Initialize();
    }
}

} // namespace

SkinVersion SkinManager::GetSkinVersion()
{
    return Global().version;
}

void SkinManager::SetSkinVersion(SkinVersion version)
{
    State &s = Global();
    if (s.version == version) return;
    s.version = version;
    if (!s.started) return;
    InitializeModules();
    Apply();
}

SkinSet *SkinManager::RetrieveSet(std::string const &name)
{
    for (auto const &set : Global().sets) {
        if (set->GetName() == name) return set.get();
    }
    return nullptr;
}

SkinSet *SkinManager::CreateSet(std::string const &name)
{
    if (SkinSet *existing = RetrieveSet(name)) return existing;
    Global().sets.push_back(std::make_unique<SkinSet>(name));
    return Global().sets.back().get();
}

std::string SkinManager::SetNameFor(SkinVersion version)
{
    return version >= SkinVersion::kV7 ? "V7" : "V5";
}

void SkinManager::Start(SkinVersion version)
{
    State &s = Global();
    s.version = version;
    s.started = true;
    InitializeModules();
    Apply();
}

bool SkinManager::IsStarted()
{
    return Global().started;
}

QString SkinManager::CurrentStyleSheet()
{
    SkinSet const *set = RetrieveSet(SetNameFor(Global().version));
    return set ? QString::fromStdString(set->GetStyleSheet()) : QString();
}

void SkinManager::Apply()
{
    State &s = Global();
    ++s.generation;
    auto *app = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (!app) return;
    // One widget style under both looks, so that only the skins make the difference.
    if (!dynamic_cast<detail::SkinStyle *>(QApplication::style())) QApplication::setStyle(new detail::SkinStyle());
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(detail::BaseFontPixelSize(s.version));
    font.setStyleHint(QFont::SansSerif);
    QApplication::setFont(font);
    QApplication::setPalette(detail::BasePalette(s.version));
    QString const sheet = CurrentStyleSheet();
    for (QWidget *widget : QApplication::allWidgets()) {
        if (widget->property(kAdoptedProperty).toBool()) widget->setStyleSheet(sheet);
    }
}

void SkinManager::AdoptWidget(QWidget *widget)
{
    if (!widget) return;
    widget->setProperty(kAdoptedProperty, true);
    widget->setStyleSheet(CurrentStyleSheet());
}

void SkinManager::RegisterModuleInfo(ui::ModuleInfo *info, bool initializeIfStarted)
{
    if (!info) return;
    State &s = Global();
    if (std::find(s.modules.begin(), s.modules.end(), info) == s.modules.end()) s.modules.push_back(info);
    if (s.started && initializeIfStarted) {
        info->Initialize();
        Apply();
    }
}

void SkinManager::UnregisterModuleInfo(ui::ModuleInfo *info)
{
    auto &modules = Global().modules;
    modules.erase(std::remove(modules.begin(), modules.end(), info), modules.end());
}

int SkinManager::GetGeneration()
{
    return Global().generation;
}

} // namespace core

bool IsRunningV7OrBeyond()
{
    return core::SkinManager::GetSkinVersion() >= core::SkinVersion::kV7;
}

} // namespace kivui::skins

namespace kivui::skin {

bool AreThemeFeaturesAvailable(skins::core::SkinVersion current, skins::core::SkinVersion feature)
{
    return static_cast<int>(current) >= static_cast<int>(feature);
}

} // namespace kivui::skin

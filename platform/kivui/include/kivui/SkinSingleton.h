#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/Assert.h>

#include <memory>
#include <typeinfo>

namespace kivui::skins {

namespace detail {
// One registry across all modules, keyed by type name: a template's static
// member would exist once per shared library under hidden visibility.
KIVUI_EXPORT void *FindSkinSingleton(char const *typeName);
KIVUI_EXPORT void *StoreSkinSingleton(char const *typeName, std::shared_ptr<void> instance);
KIVUI_EXPORT void DestroySkinSingleton(char const *typeName);
} // namespace detail

// The one instance of a skin class T. Get() asserts "S_instanceP" and returns
// null when Create() has not been called.
template <typename T> class SkinSingleton {
public:
    static T *Get()
    {
        T *const S_instanceP = static_cast<T *>(detail::FindSkinSingleton(typeid(T).name()));
        KIV_ASSERT("kivui/skins/SkinSingleton", "kivui::skins::SkinSingleton::Get", S_instanceP);
        return S_instanceP;
    }
    static T *Create()
    {
        if (void *existing = detail::FindSkinSingleton(typeid(T).name())) return static_cast<T *>(existing);
        return static_cast<T *>(detail::StoreSkinSingleton(typeid(T).name(), std::make_shared<T>()));
    }
    static bool Exists() { return detail::FindSkinSingleton(typeid(T).name()) != nullptr; }
    static void Destroy() { detail::DestroySkinSingleton(typeid(T).name()); }
};

} // namespace kivui::skins

#pragma once
// Internal to kivmetadataui: the module-wide resource objects. Not API.

#include <kivmetadataui/kivmetadataui_export.h>

#include <cstdint>

namespace kivui::utility {
class DrawbotImageResourceCache;
class ImageProvider;
class OS_ResourceManager;
} // namespace kivui::utility

namespace kivmetadataui::module {

// The reader of the library's own resources (UI archives, images, theme);
// null before Initialize and after the last Terminate, which callers must
// take as "no resources".
KIVMETADATAUI_EXPORT kivui::utility::OS_ResourceManager *GetResourceManager();

// Made on first use; the provider makes the cache first when needed.
KIVMETADATAUI_EXPORT kivui::utility::DrawbotImageResourceCache *GetImageResourceCache();
KIVMETADATAUI_EXPORT kivui::utility::ImageProvider *GetImageProvider();

// Initialize calls not yet matched by Terminate.
KIVMETADATAUI_EXPORT std::int32_t GetInitializationCount();

} // namespace kivmetadataui::module

#pragma once
// Internal to kivmetadataui: the module-wide resource objects. Not API.

#include "kivmetadataui_test_export_p.h"

#include <cstdint>
#include <string>

namespace kivui::utility {
class DrawbotImageResourceCache;
class ImageProvider;
class OS_ResourceManager;
} // namespace kivui::utility

namespace kivmetadataui::module {

// The reader of the library's own resources (UI archives, images, theme);
// null before Initialize and after the last Terminate, which callers must
// take as "no resources".
KIVMETADATAUI_TEST_EXPORT kivui::utility::OS_ResourceManager *GetResourceManager();

// Made on first use; the provider makes the cache first when needed.
KIVMETADATAUI_TEST_EXPORT kivui::utility::DrawbotImageResourceCache *GetImageResourceCache();
KIVMETADATAUI_TEST_EXPORT kivui::utility::ImageProvider *GetImageProvider();

// Initialize calls not yet matched by Terminate.
KIVMETADATAUI_TEST_EXPORT std::int32_t GetInitializationCount();

// The text of a style sheet compiled into the library (a Qt resource path
// such as ":/kivmetadataui/skins/V5DateTextEdit.qss"); read directly, as
// skins are made before Initialize too. Asserts and answers empty when the
// resource is missing.
std::string ReadStyleSheet(char const *inResourcePath);

} // namespace kivmetadataui::module

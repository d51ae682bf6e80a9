#pragma once
// Internal to kivmetadataui: the one way the library's skins get their style
// sheets. Not API.

#include "ModuleResources.h"
#include "kivmetadataui_test_export_p.h"

#include <kivui/Skin.h>

#include <string>

namespace kivmetadataui::skins {

// A skin whose style sheet is a .qss file compiled into the library; the
// text is read once, when the skin is made.
class KIVMETADATAUI_TEST_EXPORT StyleSheetSkin : public kivui::skins::Skin {
public:
    std::string GetDescription() const override { return mStyleSheet; }

protected:
    explicit StyleSheetSkin(char const *inResourcePath) : mStyleSheet(module::ReadStyleSheet(inResourcePath)) {}

private:
    std::string mStyleSheet;
};

} // namespace kivmetadataui::skins

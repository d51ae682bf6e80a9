#include "V5DateTextEditSkin.h"

namespace kivmetadataui::skins::v5 {

V5DateTextEditSkin::V5DateTextEditSkin() : StyleSheetSkin(kStyleSheet) {}
V5DateTextEditSkin::~V5DateTextEditSkin() = default;

} // namespace kivmetadataui::skins::v5

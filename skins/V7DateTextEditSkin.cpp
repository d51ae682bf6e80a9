#include "V7DateTextEditSkin.h"

namespace kivmetadataui::skins::v7 {

V7DateTextEditSkin::V7DateTextEditSkin() : StyleSheetSkin(kStyleSheet) {}
V7DateTextEditSkin::~V7DateTextEditSkin() = default;

} // namespace kivmetadataui::skins::v7

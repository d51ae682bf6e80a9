#pragma once
// Private to kivui: not installed, not API.
#include <kivui/SkinVersion.h>

#include <QPalette>

#include <string>

namespace kivui::skins::detail {

// Keys under which the toolkit's own skins sit in the sets "V5" and "V7".
inline constexpr char kV5BaseSkinKey[] = "kivui::V5BaseSkin";
inline constexpr char kV7BaseSkinKey[] = "kivui::V7BaseSkin";

std::string BaseSkinDescription(core::SkinVersion version);
QPalette BasePalette(core::SkinVersion version);
// Pixel size of the application font of a look.
int BaseFontPixelSize(core::SkinVersion version);

} // namespace kivui::skins::detail

#pragma once

#include <kivui/kivui_export.h>

namespace kivui::skins::core {

// Generations of the toolkit's look: 5 the older light one, 7 the newer dark one.
enum class SkinVersion : int { kV5 = 5, kV7 = 7 };

} // namespace kivui::skins::core

namespace kivui::skin {

// Whether the features of the look `feature` exist under the look `current`
// (a later look keeps the features of the earlier ones).
KIVUI_EXPORT bool AreThemeFeaturesAvailable(skins::core::SkinVersion current, skins::core::SkinVersion feature);

} // namespace kivui::skin

namespace kivui::skins {

KIVUI_EXPORT bool IsRunningV7OrBeyond();

} // namespace kivui::skins

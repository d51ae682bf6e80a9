#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <string>

namespace kivmetadata::utility {

// Generations of the older "Generic Panels" format.
enum GXVersion : int {
    kGXVersion_GX6 = 0,
    kGXVersion_GX5 = 1,
    kGXVersion_GX4 = 2,
};

// Where the older panels of a version are looked for:
// <user data>/generic_panels/<GX6|GX5|GX4>/.
KIVMETADATA_EXPORT std::u16string GenericPanelsDirectory(GXVersion version);
// Converts every older panel file of the version into the panel format,
// writes the results into UserPanelDirectory() and registers them. `report`
// gets one readable line per file (converted, skipped, failed and why).
// True when no file failed.
KIVMETADATA_EXPORT bool LoadAndConvertGenericPanels(GXVersion version, std::u16string &report);

} // namespace kivmetadata::utility

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

namespace kivmetadataui {

// Counted start-up and shut-down of the library: only the call that takes
// the count from 0 to 1 starts the metadata model and the module resources,
// and only the call that takes it back to 0 stops them.
KIVMETADATAUI_EXPORT void Initialize();
KIVMETADATAUI_EXPORT void Terminate();

// "major.minor.patch".
KIVMETADATAUI_EXPORT char const *Version();

} // namespace kivmetadataui

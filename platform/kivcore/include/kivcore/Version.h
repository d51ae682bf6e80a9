#pragma once

#include <kivcore/kivcore_export.h>

namespace kivcore {
// "major.minor.patch" of the kivmetadataui stack.
KIVCORE_EXPORT char const *Version();
} // namespace kivcore

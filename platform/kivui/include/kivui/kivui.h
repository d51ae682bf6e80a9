#pragma once
// Everything kivui exports is declared by the headers beside this one.
#include <kivui/kivui_export.h>

namespace kivui {
KIVUI_EXPORT char const *Version();
}

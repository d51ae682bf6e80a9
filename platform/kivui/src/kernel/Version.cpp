#include <kivui/kivui.h>

#include <kivcore/Version.h>

namespace kivui {

char const *Version()
{
    return kivcore::Version();
}

} // namespace kivui

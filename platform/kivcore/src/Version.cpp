#include <kivcore/Version.h>

namespace kivcore {

char const *Version()
{
    return KIV_VERSION_STRING;
}

} // namespace kivcore

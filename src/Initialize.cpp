#include <kivmetadataui/Initialize.h>

#include <kivcore/Version.h>
#include <kivmetadata/Initialize.h>

#include <cstdint>

namespace kivmetadataui {
namespace {
std::int32_t sInitializationCount = 0;
}

void Initialize()
{
    if (++sInitializationCount != 1) return;
    kivmetadata::Initialize();
}

void Terminate()
{
    if (--sInitializationCount != 0) return;
    kivmetadata::Terminate();
}

char const *Version()
{
    return kivcore::Version();
}

} // namespace kivmetadataui

#include <kivmetadata/Initialize.h>

#include <exempi/xmp.h>

namespace kivmetadata {
namespace {
int sCount = 0;
}

bool Initialize()
{
    if (++sCount != 1) return true;
    return xmp_init();
}

void Terminate()
{
    if (--sCount != 0) return;
    xmp_terminate();
}

bool IsInitialized()
{
    return sCount > 0;
}

} // namespace kivmetadata

#include <kivmetadata/Initialize.h>

#include "Log_p.h"
#include "Registry_p.h"

#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <exempi/xmp.h>

#include <QElapsedTimer>

namespace kivmetadata {
namespace {
int sCount = 0;
}

bool Initialize()
{
    if (++sCount != 1) return true;
    QElapsedTimer timer;
    timer.start();
    if (!xmp_init()) {
        --sCount;
        return false;
    }
    XMPMeta::RegisterNamespace(kTransientNamespace, kTransientPrefix);
    detail::LoadAllDefinitions();
    detail::LoadAllViewDefinitions();
    qCDebug(lcKivMetadata, "started in %lld ms", static_cast<long long>(timer.elapsed()));
    return true;
}

void Terminate()
{
    if (--sCount != 0) return;
    detail::ClearViewDefinitions();
    detail::ClearDefinitions();
    xmp_terminate();
}

bool IsInitialized()
{
    return sCount > 0;
}

} // namespace kivmetadata

#pragma once

#include <kivmetadata/kivmetadata_export.h>

namespace kivmetadata {

// Starts the metadata model (the XMP toolkit, the definitions). Counted:
// only the first call acts; Terminate undoes it on the last call.
KIVMETADATA_EXPORT bool Initialize();
KIVMETADATA_EXPORT void Terminate();
KIVMETADATA_EXPORT bool IsInitialized();

} // namespace kivmetadata

#pragma once

#include <kivmetadata/kivmetadata_export.h>

namespace kivmetadata {

// Starts the metadata model: the XMP toolkit, then the definitions (the
// standard schemas, types and panels compiled into the library, the custom
// schemas of CustomDefinitionsUserDirectory() and the panels of
// UserPanelDirectory()). Counted: only the first call acts; Terminate undoes
// it on the last call. False when the XMP toolkit cannot start; a definition
// file that does not load is recorded in the error list and skipped.
KIVMETADATA_EXPORT bool Initialize();
KIVMETADATA_EXPORT void Terminate();
KIVMETADATA_EXPORT bool IsInitialized();

} // namespace kivmetadata

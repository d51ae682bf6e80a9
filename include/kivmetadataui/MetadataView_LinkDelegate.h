#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

namespace kivmetadata {
struct Path;
}

namespace kivmetadataui {

// Tells a MetadataView which properties are linked (kept equal across
// assets by the embedding application) and hears when the user links or
// unlinks one with a row's link button.
class KIVMETADATAUI_EXPORT MetadataView_LinkDelegate {
public:
    virtual ~MetadataView_LinkDelegate();
    virtual bool IsPathLinked(kivmetadata::Path const &inPath) = 0;
    virtual void SetPathLinked(kivmetadata::Path const &inPath, bool inLinked) = 0;
    // While false every link button is off and disabled.
    virtual bool IsLinkingEnabled() = 0;
};

} // namespace kivmetadataui

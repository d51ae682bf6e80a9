#pragma once

#include <kivmetadata/Path.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>

namespace kivmetadata {

class MetaDataProvider;
class XMPMeta;

// Scoped write access to a provider's XMP object. Accesses nest; when the
// outermost one ends and changes were recorded, the provider's
// OnMetadataChanged runs once with all of them, then its listeners.
// The access keeps the provider alive while it lasts.
class KIVMETADATA_EXPORT MetaDataUpdateAccess {
public:
    explicit MetaDataUpdateAccess(std::shared_ptr<MetaDataProvider> const &provider);
    ~MetaDataUpdateAccess();
    MetaDataUpdateAccess(MetaDataUpdateAccess const &) = delete;
    MetaDataUpdateAccess &operator=(MetaDataUpdateAccess const &) = delete;

    XMPMeta *GetMeta() const;
    // Records a changed path; an empty Path means the whole packet.
    void AddChange(Path const &path);

private:
    std::shared_ptr<MetaDataProvider> mProvider;
};

} // namespace kivmetadata

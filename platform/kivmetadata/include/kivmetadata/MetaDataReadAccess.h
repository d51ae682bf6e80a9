#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <memory>

namespace kivmetadata {

class MetaDataProvider;
class XMPMeta;

// Scoped read access to a provider's XMP object. Accepts a null provider
// (GetMeta then returns null).
class KIVMETADATA_EXPORT MetaDataReadAccess {
public:
    explicit MetaDataReadAccess(std::shared_ptr<MetaDataProvider> const &provider);
    explicit MetaDataReadAccess(MetaDataProvider *provider);
    ~MetaDataReadAccess();
    MetaDataReadAccess(MetaDataReadAccess const &) = delete;
    MetaDataReadAccess &operator=(MetaDataReadAccess const &) = delete;

    XMPMeta *GetMeta() const;
    MetaDataProvider *Provider() const { return mProvider; }

private:
    MetaDataProvider *mProvider;
};

} // namespace kivmetadata

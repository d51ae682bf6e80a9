#pragma once

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <string_view>

namespace kivmetadata {

// A provider over one XMP object in memory.
class KIVMETADATA_EXPORT MemoryMetaDataProvider : public MetaDataProvider {
public:
    // An empty object.
    MemoryMetaDataProvider();
    explicit MemoryMetaDataProvider(std::unique_ptr<XMPMeta> meta);
    ~MemoryMetaDataProvider() override;

    // A provider over the parsed packet; null (and an error record) when the
    // packet does not parse.
    static std::shared_ptr<MemoryMetaDataProvider> FromPacket(std::string_view packet, std::string *error = nullptr);

    XMPMeta *GetMeta() override;

private:
    std::unique_ptr<XMPMeta> mMeta;
};

} // namespace kivmetadata

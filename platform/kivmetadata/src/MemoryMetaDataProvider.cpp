#include <kivmetadata/MemoryMetaDataProvider.h>

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/XMPMeta.h>

namespace kivmetadata {

MemoryMetaDataProvider::MemoryMetaDataProvider() : mMeta(std::make_unique<XMPMeta>()) {}

MemoryMetaDataProvider::MemoryMetaDataProvider(std::unique_ptr<XMPMeta> meta) : mMeta(std::move(meta)) {}

MemoryMetaDataProvider::~MemoryMetaDataProvider() = default;

std::shared_ptr<MemoryMetaDataProvider> MemoryMetaDataProvider::FromPacket(std::string_view packet, std::string *error)
{
    std::string message;
    auto meta = XMPMeta::Parse(packet, &message);
    if (!meta) {
        AddErrorInfo("The XMP packet could not be read: " + message + ".", "XMP packet in memory");
        if (error) *error = message;
        return nullptr;
    }
    return std::make_shared<MemoryMetaDataProvider>(std::move(meta));
}

XMPMeta *MemoryMetaDataProvider::GetMeta()
{
    return mMeta.get();
}

} // namespace kivmetadata

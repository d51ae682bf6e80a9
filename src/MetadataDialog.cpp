#include <kivmetadataui/MetadataProviderWrapper.h>

#include <kivcore/Assert.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <utility>

namespace kivmetadataui {

using kivmetadata::MetaDataReadAccess;
using kivmetadata::MetaDataUpdateAccess;
using kivmetadata::XMPMeta;

MetadataProviderWrapper::MetadataProviderWrapper(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
    : mProvider(std::move(inProvider))
{
    MetaDataReadAccess access(mProvider);
    XMPMeta const *meta = access.GetMeta();
    if (!meta) {
        KIV_ASSERT_MSG("src/MetadataDialog", "kivmetadataui::MetadataProviderWrapper::MetadataProviderWrapper", false,
                       "MetadataProviderWrapper: no metadata object available");
        return;
    }
    mMeta = meta->Clone();
}

MetadataProviderWrapper::~MetadataProviderWrapper()
{
    mMeta.reset();
}

bool MetadataProviderWrapper::AcceptsPath(kivmetadata::Value const &inValue, bool inForWriting) const
{
    return mProvider && mProvider->AcceptsPath(inValue, inForWriting);
}

bool MetadataProviderWrapper::IsEditingCopy() const
{
    return true;
}

XMPMeta *MetadataProviderWrapper::GetMeta()
{
    return mMeta.get();
}

void MetadataProviderWrapper::OnMetadataChanged(std::set<kivmetadata::Path> const &)
{
    mModified = true;
}

void MetadataProviderWrapper::CommitChanges()
{
    // An untouched dialog writes nothing, even when the user confirms.
    if (!mModified) return;
    MetaDataUpdateAccess access(mProvider);
    XMPMeta *target = access.GetMeta();
    if (!target) {
        KIV_ASSERT("src/MetadataDialog", "kivmetadataui::MetadataProviderWrapper::CommitChanges", false);
        return;
    }
    // Everything goes first, so properties deleted in the dialog are gone.
    kivmetadata::RemoveProperties(*target, std::string(), std::string(), kivmetadata::kUtilDoAllProperties);
    if (mMeta) kivmetadata::AppendProperties(*mMeta, *target, kivmetadata::kUtilDoAllProperties);
    access.AddChange(kivmetadata::Path{});
}

} // namespace kivmetadataui

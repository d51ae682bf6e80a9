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

struct MetadataProviderWrapper::Private {
    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    std::unique_ptr<XMPMeta> mMeta;
    bool mModified = false;
};

MetadataProviderWrapper::MetadataProviderWrapper(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
    : d(std::make_unique<Private>())
{
    d->mProvider = std::move(inProvider);
    MetaDataReadAccess access(d->mProvider);
    XMPMeta const *meta = access.GetMeta();
    if (!meta) {
        KIV_ASSERT_MSG("src/MetadataDialog", "kivmetadataui::MetadataProviderWrapper::MetadataProviderWrapper", false,
                       "MetadataProviderWrapper: no metadata object available");
        return;
    }
    d->mMeta = meta->Clone();
}

MetadataProviderWrapper::~MetadataProviderWrapper()
{
    d->mMeta.reset();
}

bool MetadataProviderWrapper::IsModified() const
{
    return d->mModified;
}

std::shared_ptr<kivmetadata::MetaDataProvider> const &MetadataProviderWrapper::GetWrappedProvider() const
{
    return d->mProvider;
}

bool MetadataProviderWrapper::AcceptsPath(kivmetadata::Value const &inValue, bool inForWriting) const
{
    return d->mProvider && d->mProvider->AcceptsPath(inValue, inForWriting);
}

bool MetadataProviderWrapper::IsEditingCopy() const
{
    return true;
}

XMPMeta *MetadataProviderWrapper::GetMeta()
{
    return d->mMeta.get();
}

void MetadataProviderWrapper::OnMetadataChanged(std::set<kivmetadata::Path> const &)
{
    d->mModified = true;
}

void MetadataProviderWrapper::CommitChanges()
{
    // An untouched dialog writes nothing, even when the user confirms.
    if (!d->mModified) return;
    MetaDataUpdateAccess access(d->mProvider);
    XMPMeta *target = access.GetMeta();
    if (!target) {
        KIV_ASSERT("src/MetadataDialog", "kivmetadataui::MetadataProviderWrapper::CommitChanges", false);
        return;
    }
    // Everything goes first, so properties deleted in the dialog are gone.
    kivmetadata::RemoveProperties(*target, std::string(), std::string(), kivmetadata::kUtilDoAllProperties);
    if (d->mMeta) kivmetadata::AppendProperties(*d->mMeta, *target, kivmetadata::kUtilDoAllProperties);
    access.AddChange(kivmetadata::Path{});
}

} // namespace kivmetadataui

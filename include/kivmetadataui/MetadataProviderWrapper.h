#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadata/MetaDataProvider.h>

#include <memory>
#include <set>

namespace kivmetadataui {

// A provider over a private working copy of another provider's XMP object.
// A dialog binds its controls to the wrapper; nothing reaches the wrapped
// provider until CommitChanges, and cancelling is dropping the wrapper.
class KIVMETADATAUI_EXPORT MetadataProviderWrapper : public kivmetadata::MetaDataProvider {
public:
    // Clones the wrapped provider's XMP object (asserts when it has none and
    // keeps an empty working copy).
    explicit MetadataProviderWrapper(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);
    ~MetadataProviderWrapper() override;

    // The wrapper accepts exactly what the wrapped provider accepts.
    bool AcceptsPath(kivmetadata::Value const &inValue, bool inForWriting) const override;
    bool IsEditingCopy() const override;
    // The working copy, never the wrapped provider's object.
    kivmetadata::XMPMeta *GetMeta() override;
    void OnMetadataChanged(std::set<kivmetadata::Path> const &inChanges) override;

    // When anything was changed through the wrapper, replaces every property
    // of the wrapped provider's object by those of the working copy and
    // records one change of the whole packet. An untouched wrapper writes
    // nothing. The modified state stays set, so committing again writes again.
    void CommitChanges();

    bool IsModified() const;
    std::shared_ptr<kivmetadata::MetaDataProvider> const &GetWrappedProvider() const;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui

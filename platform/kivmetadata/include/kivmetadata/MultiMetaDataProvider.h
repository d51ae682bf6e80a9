#pragma once

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <vector>

namespace kivmetadata {

// A provider over several assets edited together. A read answers
// kGetValueResult_SeveralValues where the assets differ; a write or delete
// goes to every asset that accepts it; GetMeta() is the first asset's object.
//
// For arrays that differ, the union of their items (first appearance order,
// joined by kDefaultSeparator) is readable at the same local name in
// kTransientNamespace: reading Path{kTransientNamespace, "<prefix>:subject"}
// through this provider gives the union of every asset's dc:subject (likewise
// dc:creator). The transient namespace is never written to any asset.
class KIVMETADATA_EXPORT MultiMetaDataProvider : public MetaDataProvider {
public:
    explicit MultiMetaDataProvider(std::vector<std::shared_ptr<MetaDataProvider>> assets);
    ~MultiMetaDataProvider() override;

    std::vector<std::shared_ptr<MetaDataProvider>> const &Assets() const { return mAssets; }

    // Accepted when every asset accepts it.
    bool AcceptsPath(Value const &value, bool forWriting) const override;
    XMPMeta *GetMeta() override;
    // Forwards the changes to each asset (their own update access), so that
    // each asset is marked modified and tells its listeners.
    void OnMetadataChanged(std::set<Path> const &changes) override;
    GetValueResult ReadValue(Path const &path, std::string &text) const override;
    bool WriteValue(Path const &path, std::string const &text) override;
    bool RemoveValue(Path const &path) override;
    std::vector<XMPMeta *> AllMetas() override;
    std::vector<std::shared_ptr<SchemaDefinition>> DynamicSchemaDefinitions() const override;
    void GetAllPathsForDynamicSchema(std::string const &ns,
                                     std::vector<std::shared_ptr<PropertyDefinition>> &properties) const override;

private:
    std::vector<std::shared_ptr<MetaDataProvider>> mAssets;
};

} // namespace kivmetadata

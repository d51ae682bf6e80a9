#include <kivmetadata/MultiMetaDataProvider.h>

#include "ValueIO_p.h"

#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>

#include <algorithm>

namespace kivmetadata {

using namespace detail;

namespace {

constexpr char kDublinCore[] = "http://purl.org/dc/elements/1.1/";

} // namespace

MultiMetaDataProvider::MultiMetaDataProvider(std::vector<std::shared_ptr<MetaDataProvider>> assets)
    : mAssets(std::move(assets))
{
    std::erase(mAssets, nullptr);
}

MultiMetaDataProvider::~MultiMetaDataProvider() = default;

bool MultiMetaDataProvider::AcceptsPath(Value const &value, bool forWriting) const
{
    if (mAssets.empty()) return false;
    if (!MetaDataProvider::AcceptsPath(value, forWriting)) return false;
    for (auto const &asset : mAssets) {
        Value const assetValue{value.mNotEditable, value.mPath, asset};
        if (!asset->AcceptsPath(assetValue, forWriting)) return false;
    }
    return true;
}

XMPMeta *MultiMetaDataProvider::GetMeta()
{
    return mAssets.empty() ? nullptr : mAssets.front()->GetMeta();
}

void MultiMetaDataProvider::OnMetadataChanged(std::set<Path> const &changes)
{
    for (auto const &asset : mAssets) {
        MetaDataUpdateAccess access(asset);
        for (auto const &path : changes)
            access.AddChange(path);
    }
}

GetValueResult MultiMetaDataProvider::ReadValue(Path const &path, std::string &text) const
{
    if (mAssets.empty()) return kGetValueResult_Unreadable;
    if (path.mNamespace == kTransientNamespace) {
        // The union of the items of every asset's Dublin Core array of that name.
        std::string const local = path.mPath.substr(path.mPath.find(':') + 1);
        Path const source = PathForSchemaNameAndPropertyName(kDublinCore, local);
        std::vector<std::string> all;
        bool any = false;
        for (auto const &asset : mAssets) {
            std::string assetText;
            if (asset->ReadValue(source, assetText) != kGetValueResult_OneValue) continue;
            any = true;
            for (auto &item : SplitItems(assetText))
                if (std::find(all.begin(), all.end(), item) == all.end()) all.push_back(std::move(item));
        }
        if (!any) return kGetValueResult_Absent;
        text = JoinItems(all);
        return kGetValueResult_OneValue;
    }
    std::string first;
    GetValueResult const firstResult = mAssets.front()->ReadValue(path, first);
    GetValueResult result = firstResult;
    for (std::size_t i = 1; i < mAssets.size(); ++i) {
        std::string other;
        GetValueResult const otherResult = mAssets[i]->ReadValue(path, other);
        if (otherResult != firstResult || (firstResult == kGetValueResult_OneValue && other != first)) {
            result = kGetValueResult_SeveralValues;
            break;
        }
    }
    if (result <= kGetValueResult_SeveralValues) text = std::move(first);
    return result;
}

bool MultiMetaDataProvider::WriteValue(Path const &path, std::string const &text)
{
    bool changed = false;
    for (auto const &asset : mAssets) {
        if (!asset->AcceptsPath(Value{false, path, asset}, true)) continue;
        changed = asset->WriteValue(path, text) || changed;
    }
    return changed;
}

bool MultiMetaDataProvider::RemoveValue(Path const &path)
{
    bool changed = false;
    for (auto const &asset : mAssets) {
        if (!asset->AcceptsPath(Value{false, path, asset}, true)) continue;
        changed = asset->RemoveValue(path) || changed;
    }
    return changed;
}

std::vector<XMPMeta *> MultiMetaDataProvider::AllMetas()
{
    std::vector<XMPMeta *> metas;
    for (auto const &asset : mAssets)
        for (XMPMeta *meta : asset->AllMetas())
            if (std::find(metas.begin(), metas.end(), meta) == metas.end()) metas.push_back(meta);
    return metas;
}

std::vector<std::shared_ptr<SchemaDefinition>> MultiMetaDataProvider::DynamicSchemaDefinitions() const
{
    std::vector<std::shared_ptr<SchemaDefinition>> result;
    for (auto const &asset : mAssets)
        for (auto &schema : asset->DynamicSchemaDefinitions())
            if (std::none_of(result.begin(), result.end(),
                             [&](auto const &s) { return s->mNamespace == schema->mNamespace; }))
                result.push_back(std::move(schema));
    return result;
}

void MultiMetaDataProvider::GetAllPathsForDynamicSchema(
    std::string const &ns, std::vector<std::shared_ptr<PropertyDefinition>> &properties) const
{
    for (auto const &asset : mAssets)
        asset->GetAllPathsForDynamicSchema(ns, properties);
}

} // namespace kivmetadata

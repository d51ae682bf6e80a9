#include <kivmetadata/MetaDataProvider.h>

#include "Registry_p.h"
#include "ValueIO_p.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/Assert.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace kivmetadata {

using namespace detail;

MetaDataProvider::MetaDataProvider() = default;
MetaDataProvider::~MetaDataProvider() = default;

bool MetaDataProvider::AcceptsPath(Value const &value, bool forWriting) const
{
    return !(forWriting && value.mPath.mNamespace == kTransientNamespace);
}

bool MetaDataProvider::IsEditingCopy() const
{
    return false;
}

void MetaDataProvider::OnMetadataChanged(std::set<Path> const &) {}

GetValueResult MetaDataProvider::ReadValue(Path const &path, std::string &text) const
{
    XMPMeta const *meta = MetaForReading();
    if (!meta) return kGetValueResult_Unreadable;
    return ReadText(meta, path, text);
}

bool MetaDataProvider::WriteValue(Path const &path, std::string const &text)
{
    return WriteText(GetMeta(), path, text);
}

bool MetaDataProvider::RemoveValue(Path const &path)
{
    XMPMeta *meta = GetMeta();
    return meta && meta->DeleteProperty(path.mNamespace, path.mPath);
}

std::vector<XMPMeta *> MetaDataProvider::AllMetas()
{
    XMPMeta *meta = GetMeta();
    if (!meta) return {};
    return {meta};
}

namespace detail {

std::shared_ptr<SchemaDefinition> DynamicSchema(std::string const &ns)
{
    auto &dynamic = TheRegistry().mDynamic;
    auto &schema = dynamic[ns];
    if (!schema) {
        schema = std::make_shared<SchemaDefinition>();
        schema->mNamespace = ns;
        schema->mPrefix = XMPMeta::PrefixForNamespace(ns);
        schema->mLabel = ns;
        schema->mDynamic = true;
    }
    return schema;
}

} // namespace detail

namespace {

std::string LocalName(std::string const &qualified)
{
    auto colon = qualified.find(':');
    return colon == std::string::npos ? qualified : qualified.substr(colon + 1);
}

// A definition of what the packet holds at `path` (text values).
std::shared_ptr<PropertyDefinition> DefinitionFromPacket(XMPMeta const &meta, std::string const &ns,
                                                         std::string const &path, std::string const &schemaNs)
{
    auto definition = std::make_shared<PropertyDefinition>();
    std::string value;
    std::uint32_t options = 0;
    meta.GetProperty(ns, path, value, &options);
    std::size_t const slash = path.rfind('/');
    std::string const qualified = slash == std::string::npos ? path : path.substr(slash + 1);
    definition->mName = LocalName(qualified);
    definition->mPrefix = qualified.substr(0, qualified.find(':'));
    definition->mNamespace = slash == std::string::npos ? schemaNs : XMPMeta::NamespaceForPrefix(definition->mPrefix);
    definition->mLabel = definition->mName;
    std::string structPath;
    if (options & XMPMeta::kPropArrayIsAltText) {
        definition->mForm = ValueForm::kLangAlt;
    } else if (options & XMPMeta::kPropValueIsArray) {
        definition->mForm = (options & XMPMeta::kPropArrayIsAlternate) ? ValueForm::kAlt
                            : (options & XMPMeta::kPropArrayIsOrdered) ? ValueForm::kSeq
                                                                       : ValueForm::kBag;
        std::string item;
        std::uint32_t itemOptions = 0;
        if (meta.GetProperty(ns, path + "[1]", item, &itemOptions) && (itemOptions & XMPMeta::kPropValueIsStruct)) {
            definition->mItemForm = ValueForm::kStruct;
            structPath = path + "[1]";
        }
    } else if (options & XMPMeta::kPropValueIsStruct) {
        definition->mForm = ValueForm::kStruct;
        structPath = path;
    }
    if (!structPath.empty()) {
        meta.Iterate(
            [&](XMPMeta::Node const &node) {
                if (node.mPath.size() <= structPath.size() + 1 || (node.mOptions & XMPMeta::kPropIsQualifier))
                    return true;
                std::string const rest = node.mPath.substr(structPath.size() + 1);
                if (rest.find_first_of("/[") != std::string::npos) return true;
                definition->mFields.push_back(DefinitionFromPacket(meta, ns, node.mPath, schemaNs));
                return true;
            },
            ns, structPath);
    } else {
        definition->mPrimitiveType = kPrimitiveType_Text;
    }
    return definition;
}

} // namespace

std::vector<std::shared_ptr<SchemaDefinition>> MetaDataProvider::DynamicSchemaDefinitions() const
{
    std::vector<std::shared_ptr<SchemaDefinition>> result;
    XMPMeta const *meta = MetaForReading();
    if (!meta) return result;
    for (auto const &ns : meta->Namespaces()) {
        if (ns == kTransientNamespace || NamespaceDefinition(ns)) continue;
        auto schema = std::make_shared<SchemaDefinition>(*DynamicSchema(ns));
        schema->mProperties.clear();
        result.push_back(std::move(schema));
    }
    return result;
}

void MetaDataProvider::GetAllPathsForDynamicSchema(std::string const &ns,
                                                   std::vector<std::shared_ptr<PropertyDefinition>> &properties) const
{
    XMPMeta const *meta = MetaForReading();
    if (!meta || ns.empty() || NamespaceDefinition(ns)) return;
    auto schema = DynamicSchema(ns);
    // Indexed by name: a packet may hold thousands of unknown properties.
    std::unordered_map<std::string, std::shared_ptr<PropertyDefinition>> known;
    for (auto const &property : schema->mProperties)
        if (property) known.emplace(property->mName, property);
    std::unordered_set<std::string> listed;
    for (auto const &property : properties)
        if (property) listed.insert(property->mName);
    for (auto const &path : meta->TopLevelProperties(ns)) {
        std::string const name = LocalName(path);
        auto &definition = known[name];
        if (!definition) {
            definition = DefinitionFromPacket(*meta, ns, path, ns);
            schema->mProperties.push_back(definition);
        }
        if (listed.insert(name).second) properties.push_back(definition);
    }
}

void MetaDataProvider::AddChangeListener(std::shared_ptr<ChangeListener> listener)
{
    if (listener) mListeners.push_back(std::move(listener));
}

void MetaDataProvider::RemoveChangeListener(std::shared_ptr<ChangeListener> const &listener)
{
    std::erase(mListeners, listener);
}

void MetaDataProvider::BeginUpdate()
{
    ++mUpdateDepth;
}

void MetaDataProvider::RecordChange(Path const &path)
{
    mPendingChanges.insert(path);
}

void MetaDataProvider::EndUpdate()
{
    if (--mUpdateDepth > 0 || mPendingChanges.empty()) return;
    std::set<Path> changes;
    changes.swap(mPendingChanges);
    OnMetadataChanged(changes);
    // Listeners may add or drop listeners: call a snapshot.
    auto const listeners = mListeners;
    XMPMeta *meta = GetMeta();
    for (auto const &listener : listeners) {
        if (listener && *listener) (*listener)(meta);
    }
    std::erase_if(mListeners, [](auto const &listener) { return !listener || !*listener; });
}

// --- Scoped access ------------------------------------------------------------

MetaDataReadAccess::MetaDataReadAccess(std::shared_ptr<MetaDataProvider> const &provider)
    : MetaDataReadAccess(provider.get())
{
}

MetaDataReadAccess::MetaDataReadAccess(MetaDataProvider *provider) : mProvider(provider)
{
    if (mProvider) ++mProvider->mReadDepth;
}

MetaDataReadAccess::~MetaDataReadAccess()
{
    if (mProvider) --mProvider->mReadDepth;
}

XMPMeta *MetaDataReadAccess::GetMeta() const
{
    return mProvider ? mProvider->GetMeta() : nullptr;
}

MetaDataUpdateAccess::MetaDataUpdateAccess(std::shared_ptr<MetaDataProvider> const &provider) : mProvider(provider)
{
    if (mProvider) mProvider->BeginUpdate();
}

MetaDataUpdateAccess::~MetaDataUpdateAccess()
{
    if (!mProvider) return;
    try {
        mProvider->EndUpdate();
    } catch (std::exception const &e) {
        // A destructor must not throw; a failing listener is reported instead.
        AddErrorInfo(std::string("A change listener failed: ") + e.what() + ".", "metadata update");
    } catch (...) {
        AddErrorInfo("A change listener failed.", "metadata update");
    }
}

XMPMeta *MetaDataUpdateAccess::GetMeta() const
{
    return mProvider ? mProvider->GetMeta() : nullptr;
}

void MetaDataUpdateAccess::AddChange(Path const &path)
{
    KIV_ASSERT("src/MetaDataProvider", "kivmetadata::MetaDataUpdateAccess::AddChange", mProvider);
    if (mProvider) mProvider->RecordChange(path);
}

} // namespace kivmetadata

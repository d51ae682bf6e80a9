#include <kivmetadata/PathOperations.h>

#include "Registry_p.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/XMPMeta.h>

namespace kivmetadata {

using namespace detail;

namespace detail {

bool ParsePath(std::string_view path, std::vector<PathStep> &steps)
{
    steps.clear();
    std::size_t at = 0;
    auto readName = [&](PathStep &step) {
        std::size_t const end = path.find_first_of("/[", at);
        std::string_view const qualified = path.substr(at, end == std::string_view::npos ? path.size() - at : end - at);
        std::size_t const colon = qualified.find(':');
        if (colon == std::string_view::npos || colon == 0 || colon + 1 == qualified.size()) return false;
        step.mPrefix = std::string(qualified.substr(0, colon));
        step.mName = std::string(qualified.substr(colon + 1));
        at += qualified.size();
        return true;
    };
    PathStep first;
    if (path.empty() || !readName(first)) return false;
    steps.push_back(std::move(first));
    while (at < path.size()) {
        PathStep step;
        if (path[at] == '/') {
            ++at;
            if (at < path.size() && path[at] == '?') {
                ++at;
                step.mKind = PathStep::kQualifier;
            }
            if (!readName(step)) return false;
        } else if (path[at] == '[') {
            std::size_t const close = path.find(']', at);
            if (close == std::string_view::npos) return false;
            std::string_view const inside = path.substr(at + 1, close - at - 1);
            at = close + 1;
            if (inside == "last()") {
                step.mKind = PathStep::kLast;
            } else if (!inside.empty() && inside[0] == '?') {
                step.mKind = PathStep::kLangSelector;
                step.mName = std::string(inside);
            } else {
                if (inside.empty()) return false;
                int index = 0;
                for (char c : inside) {
                    if (c < '0' || c > '9' || index > 100000000) return false;
                    index = index * 10 + (c - '0');
                }
                if (index < 1) return false;
                step.mKind = PathStep::kIndex;
                step.mIndex = index;
            }
        } else {
            return false;
        }
        steps.push_back(std::move(step));
    }
    return true;
}

} // namespace detail

namespace {

std::shared_ptr<SchemaDefinition> SchemaFor(std::string const &ns)
{
    if (auto schema = NamespaceDefinition(ns)) return schema;
    auto const &dynamic = TheRegistry().mDynamic;
    auto it = dynamic.find(ns);
    return it == dynamic.end() ? nullptr : it->second;
}

std::string PrefixFor(std::string const &ns)
{
    std::string prefix = XMPMeta::PrefixForNamespace(ns);
    if (prefix.empty())
        if (auto schema = NamespaceDefinition(ns)) prefix = schema->mPrefix;
    // A namespace nobody declared gets a prefix of the toolkit's choosing, so
    // that its paths can still be written.
    if (prefix.empty() && !ns.empty()) XMPMeta::RegisterNamespace(ns, "ns", &prefix);
    return prefix;
}

} // namespace

Path PathForSchemaNameAndPropertyName(std::string const &ns, std::string const &name)
{
    if (name.find(':') != std::string::npos) return Path{ns, name};
    return Path{ns, PrefixFor(ns) + ':' + name};
}

Path CreatePathFromArrayItem(Path const &arrayPath, int index)
{
    return Path{arrayPath.mNamespace, arrayPath.mPath + '[' + std::to_string(index) + ']'};
}

Path CreatePathFromSchemaProperty(SchemaDefinition const &schema, PropertyDefinition const &property)
{
    std::string prefix = property.mPrefix;
    if (prefix.empty() || (!property.mNamespace.empty() && property.mNamespace == schema.mNamespace))
        prefix = schema.mPrefix;
    return Path{schema.mNamespace, prefix + ':' + property.mName};
}

Path CreatePathFromStructField(Path const &structPath, PropertyDefinition const &field)
{
    std::string prefix = field.mPrefix;
    if (prefix.empty()) prefix = PrefixFor(field.mNamespace.empty() ? structPath.mNamespace : field.mNamespace);
    return Path{structPath.mNamespace, structPath.mPath + '/' + prefix + ':' + field.mName};
}

std::shared_ptr<PropertyDefinition> PathEntryDefinition(Path const &path)
{
    std::vector<PathStep> steps;
    if (!ParsePath(path.mPath, steps) || steps[0].mKind != PathStep::kName) return nullptr;
    auto schema = SchemaFor(path.mNamespace);
    if (!schema) return nullptr;
    auto definition = schema->FindProperty(steps[0].mName);
    for (std::size_t i = 1; definition && i < steps.size(); ++i) {
        auto const &step = steps[i];
        switch (step.mKind) {
        case PathStep::kIndex:
        case PathStep::kLast:
        case PathStep::kLangSelector:
            definition = definition->ItemDefinition();
            break;
        case PathStep::kName:
            if (definition->mForm != ValueForm::kStruct) return nullptr;
            definition = definition->FieldDefinition(XMPMeta::NamespaceForPrefix(step.mPrefix), step.mName);
            break;
        default:
            return nullptr;
        }
    }
    return definition;
}

std::vector<Path> ChildPaths(Path const &path)
{
    std::vector<Path> children;
    auto definition = PathEntryDefinition(path);
    if (!definition || definition->mForm != ValueForm::kStruct) return children;
    for (auto const &field : definition->mFields)
        if (field) children.push_back(CreatePathFromStructField(path, *field));
    return children;
}

bool IsPathAnArray(Path const &path, bool includeLangAlt)
{
    auto definition = PathEntryDefinition(path);
    return definition && (definition->IsArray() || (includeLangAlt && definition->IsLangAlt()));
}

std::optional<PrimitiveType> PrimitiveTypeOfPath(Path const &path)
{
    auto definition = PathEntryDefinition(path);
    if (!definition) return std::nullopt;
    switch (definition->mForm) {
    case ValueForm::kStruct:
        return std::nullopt;
    case ValueForm::kLangAlt:
        return kPrimitiveType_LangAlt;
    case ValueForm::kBag:
        if (definition->mItemForm == ValueForm::kStruct) return std::nullopt;
        return kPrimitiveType_TextBag;
    case ValueForm::kSeq:
    case ValueForm::kAlt:
        if (definition->mItemForm == ValueForm::kStruct) return std::nullopt;
        return kPrimitiveType_TextSeq;
    case ValueForm::kSimple:
        break;
    }
    return definition->mPrimitiveType ? *definition->mPrimitiveType : kPrimitiveType_Text;
}

void VisitDescendantLeafPaths(Path const &path, std::function<void(Path const &)> const &visit)
{
    auto const children = ChildPaths(path);
    if (children.empty()) {
        visit(path);
        return;
    }
    for (auto const &child : children)
        VisitDescendantLeafPaths(child, visit);
}

void VisitDescendantLeafPaths(SchemaDefinition const &schema, std::function<void(Path const &)> const &visit)
{
    for (auto const &property : schema.mProperties)
        if (property) VisitDescendantLeafPaths(CreatePathFromSchemaProperty(schema, *property), visit);
}

void IncludeAllDescendantPaths(SchemaDefinition const &schema, std::set<Path> &paths)
{
    VisitDescendantLeafPaths(schema, [&](Path const &leaf) { paths.insert(leaf); });
}

std::size_t CountDescendantLeafPaths(SchemaDefinition const &schema)
{
    std::size_t count = 0;
    VisitDescendantLeafPaths(schema, [&](Path const &) { ++count; });
    return count;
}

std::size_t CountDescendantLeafPaths(Path const &path)
{
    std::size_t count = 0;
    VisitDescendantLeafPaths(path, [&](Path const &) { ++count; });
    return count;
}

bool IsPropertyExcludedForClient(Path const &path)
{
    auto const &excluded = TheRegistry().mExcluded;
    if (excluded.empty()) return false;
    if (excluded.count(path)) return true;
    // An excluded property hides its fields and items too.
    std::size_t const end = path.mPath.find_first_of("/[");
    return end != std::string::npos && excluded.count(Path{path.mNamespace, path.mPath.substr(0, end)});
}

bool IsPropertyUISupported(Path const &path)
{
    return !IsPropertyExcludedForClient(path) && PathEntryDefinition(path) != nullptr;
}

void ExcludePropertyForClient(Path const &path, bool exclude)
{
    if (exclude)
        TheRegistry().mExcluded.insert(path);
    else
        TheRegistry().mExcluded.erase(path);
}

bool IsAllMetadataForcedWritable()
{
    return TheRegistry().mForcedWritable;
}

void SetAllMetadataForcedWritable(bool forced)
{
    TheRegistry().mForcedWritable = forced;
}

} // namespace kivmetadata

// Private to kivmetadata: the process-wide definition registry behind
// Definitions.h, PathOperations.h and ViewDefinitions.h.
#pragma once

#include <kivmetadata/Path.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/TypeDefinition.h>

#include <QString>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kivmetadata::detail {

struct Registry {
    std::vector<std::shared_ptr<SchemaDefinition>> mSchemas; // registration order
    std::map<std::string, std::shared_ptr<SchemaDefinition>> mByNamespace;
    std::map<std::string, std::shared_ptr<TypeDefinition>> mTypes;
    // Namespaces met in packets without a definition, with the properties
    // seen so far.
    std::map<std::string, std::shared_ptr<SchemaDefinition>> mDynamic;
    std::set<Path> mExcluded;
    bool mForcedWritable = false;
};

Registry &TheRegistry();
void ClearDefinitions();
// Loads the compiled-in definitions and the custom schemas.
void LoadAllDefinitions();
void ClearViewDefinitions();
void LoadAllViewDefinitions();

// The dynamic schema of a namespace (made on first use).
std::shared_ptr<SchemaDefinition> DynamicSchema(std::string const &ns);
// Fills unset primitive types from type ids and namespaces of fields.
void CompleteProperty(PropertyDefinition &property, std::string const &ns, std::string const &prefix);

// One step of an XMP path.
struct PathStep {
    enum Kind { kName, kIndex, kLangSelector, kQualifier, kLast } mKind = kName;
    std::string mPrefix;
    std::string mName;
    int mIndex = 0;
};
// Splits an XMP path; false when it is not well-formed.
bool ParsePath(std::string_view path, std::vector<PathStep> &steps);

QString ToQString(std::u16string const &text);
std::u16string ToU16(QString const &text);
// Reads a file (file system or Qt resource); false with a reason on failure.
bool ReadWholeFile(QString const &path, std::string &bytes, std::string *error);

} // namespace kivmetadata::detail

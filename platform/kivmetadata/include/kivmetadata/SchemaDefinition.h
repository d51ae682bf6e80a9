#pragma once

#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {

// One schema: a namespace and its properties. Standard schemas come from the
// definitions compiled into the library; custom schemas (IsCustom) from files
// in CustomDefinitionsUserDirectory(). Copyable: a dynamic schema is made as a
// copy of a template (MetaDataProvider::DynamicSchemaDefinitions).
struct KIVMETADATA_EXPORT SchemaDefinition {
    std::string mNamespace;
    std::string mPrefix;
    std::string mLabel; // localisation key with default
    std::string mDescription;
    std::vector<std::shared_ptr<PropertyDefinition>> mProperties;
    std::u16string mFilePath; // the file of a custom schema; empty for a standard one
    bool mDynamic = false;    // made for a namespace found in a packet, not declared anywhere

    bool IsCustom() const { return !mFilePath.empty(); }
    // The property of that local name, or null.
    std::shared_ptr<PropertyDefinition> FindProperty(std::string const &name) const;
};

} // namespace kivmetadata

#pragma once

#include <kivmetadata/Choice.h>
#include <kivmetadata/PrimitiveType.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kivmetadata {

struct PropertyDefinition;
struct SchemaDefinition;
struct TypeDefinition;

// Registry of schema and type definitions, filled by Initialize from the
// standard definitions and the custom schema folder.

// Standard schemas in a fixed order (dc, xmp, xmpRights, xmpMM, photoshop,
// Iptc4xmpCore, Iptc4xmpExt, exif, exifEX, tiff, aux, pdf, crs, then any
// other standard file by prefix), then custom schemas by label.
KIVMETADATA_EXPORT std::vector<std::shared_ptr<SchemaDefinition>> GetSchemaDefinitions();
KIVMETADATA_EXPORT std::shared_ptr<SchemaDefinition> NamespaceDefinition(std::string const &ns);
KIVMETADATA_EXPORT std::shared_ptr<SchemaDefinition> SchemaDefinitionForPrefix(std::string const &prefix);
// The property of that name in the schema, or null. Asserts
// "inSchemaDefinition" on a null schema.
KIVMETADATA_EXPORT std::shared_ptr<PropertyDefinition>
PropertyNameDefinition(std::shared_ptr<SchemaDefinition> const &inSchemaDefinition, std::string const &name);
KIVMETADATA_EXPORT std::shared_ptr<TypeDefinition> TypeIdDefinition(std::string const &id);
// The type id naming a primitive type: "integer", "real", "text",
// "boolean", "openChoice", "closedChoice", "bag", "seq", "langAlt".
KIVMETADATA_EXPORT std::string PrimitiveTypeAsPrimitiveTypeId(PrimitiveType type);
// The choices a property offers: its own list when it has one, else those of
// its type (named by its type id, or else by its primitive type).
KIVMETADATA_EXPORT std::vector<Choice> DefinitionChoices(PropertyDefinition const &definition);

// Registers a schema (and its namespace with the XMP toolkit, which may
// give it another prefix; the schema's and its properties' prefixes follow).
// `origin` names where it comes from (a file, "custom") for error records.
// An already registered namespace is replaced only with `replace`;
// otherwise the call fails with an error record.
KIVMETADATA_EXPORT bool RegisterSchemaDefinition(std::shared_ptr<SchemaDefinition> const &schema,
                                                 std::string const &origin, bool replace);
KIVMETADATA_EXPORT bool UnregisterSchemaDefinition(std::string const &ns);

// Reads a schema file (format in docs/formats.md); null and an error record
// when it does not parse.
KIVMETADATA_EXPORT std::shared_ptr<SchemaDefinition>
ParseSchemaDefinition(std::string_view xml, std::u16string const &filePath, std::string *error = nullptr);
// Loads and registers every "*.xml" schema file of a folder; with `custom`,
// each schema remembers its file. Returns how many were registered.
KIVMETADATA_EXPORT int LoadSchemaDefinitionsFromFolder(std::u16string const &folder, bool custom);
// Loads a types file; false and an error record when it does not parse.
KIVMETADATA_EXPORT bool LoadTypeDefinitions(std::string_view xml, std::string const &origin);

// Custom schemas.
// The per-user folder of custom schema files (created on demand).
KIVMETADATA_EXPORT std::u16string CustomDefinitionsUserDirectory();
// A new, unregistered custom schema. Its namespace is made from the unique
// identifier ("http://ns.kivmetadata.org/custom/<identifier>/"), its prefix
// from the name (an XML name, unique among the registered schemas).
KIVMETADATA_EXPORT std::shared_ptr<SchemaDefinition> CreateNewSchema(std::string const &identifier,
                                                                     std::string const &name,
                                                                     std::string const &labelKey,
                                                                     std::string const &descriptionKey);
KIVMETADATA_EXPORT void SetFilePathForSchema(std::shared_ptr<SchemaDefinition> const &schema,
                                             std::u16string const &filePath);
// Writes the schema to its file (atomically); false and an error record on
// failure.
KIVMETADATA_EXPORT bool RewriteSchemaFile(std::shared_ptr<SchemaDefinition> const &schema,
                                          std::string *error = nullptr);
KIVMETADATA_EXPORT std::string SchemaDefinitionAsXMLString(SchemaDefinition const &schema);
// A simple property definition (no namespace yet: AddPropertyToSchema sets it).
KIVMETADATA_EXPORT std::shared_ptr<PropertyDefinition> CreateNewProperty(PrimitiveType type, std::string const &name,
                                                                         std::string const &labelKey);
KIVMETADATA_EXPORT void AddPropertyToSchema(std::shared_ptr<SchemaDefinition> const &schema,
                                            std::shared_ptr<PropertyDefinition> const &property);
KIVMETADATA_EXPORT bool RemovePropertyFromSchema(std::shared_ptr<SchemaDefinition> const &schema,
                                                 std::string const &name);

} // namespace kivmetadata

#pragma once

#include <kivmetadata/Path.h>
#include <kivmetadata/PrimitiveType.h>
#include <kivmetadata/kivmetadata_export.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kivmetadata {

struct PropertyDefinition;
struct SchemaDefinition;

// Path of a top-level property: "prefix:name" with the toolkit's prefix for
// the namespace. A name that already has a prefix is kept as it is.
KIVMETADATA_EXPORT Path PathForSchemaNameAndPropertyName(std::string const &ns, std::string const &name);
// "array[index]", index counted from 1.
KIVMETADATA_EXPORT Path CreatePathFromArrayItem(Path const &arrayPath, int index);
KIVMETADATA_EXPORT Path CreatePathFromSchemaProperty(SchemaDefinition const &schema,
                                                     PropertyDefinition const &property);
// "struct/fieldPrefix:field".
KIVMETADATA_EXPORT Path CreatePathFromStructField(Path const &structPath, PropertyDefinition const &field);

// The field paths of a struct (or of a struct item of an array); empty for
// anything else. Arrays are leaves: their items come from the packet.
KIVMETADATA_EXPORT std::vector<Path> ChildPaths(Path const &path);
// Bag, seq or alt; with includeLangAlt also a language alternative.
KIVMETADATA_EXPORT bool IsPathAnArray(Path const &path, bool includeLangAlt = false);
// Integer, real, text, boolean or a choice for a simple value (or a simple
// array item or struct field); 6 for a bag and 7 for a seq or alt of simple
// items; 8 for a language alternative. Empty for structs, arrays of structs
// and unknown paths.
KIVMETADATA_EXPORT std::optional<PrimitiveType> PrimitiveTypeOfPath(Path const &path);
// The definition of a property, struct field or array item path (an item
// resolves to the array's ItemDefinition). Null for unknown paths.
KIVMETADATA_EXPORT std::shared_ptr<PropertyDefinition> PathEntryDefinition(Path const &path);

// Calls `visit` for every leaf path below `path` (fields of structs,
// recursively); a leaf path visits itself.
KIVMETADATA_EXPORT void VisitDescendantLeafPaths(Path const &path, std::function<void(Path const &)> const &visit);
KIVMETADATA_EXPORT void VisitDescendantLeafPaths(SchemaDefinition const &schema,
                                                 std::function<void(Path const &)> const &visit);
KIVMETADATA_EXPORT void IncludeAllDescendantPaths(SchemaDefinition const &schema, std::set<Path> &paths);
KIVMETADATA_EXPORT std::size_t CountDescendantLeafPaths(SchemaDefinition const &schema);
KIVMETADATA_EXPORT std::size_t CountDescendantLeafPaths(Path const &path);

// Whether the UI can show the property: it has a definition and no client
// excluded it.
KIVMETADATA_EXPORT bool IsPropertyUISupported(Path const &path);
// Hides (or shows again) a property for this client, process-wide.
KIVMETADATA_EXPORT void ExcludePropertyForClient(Path const &path, bool exclude);
KIVMETADATA_EXPORT bool IsPropertyExcludedForClient(Path const &path);

// When set, every control is editable, read-only definitions included.
KIVMETADATA_EXPORT bool IsAllMetadataForcedWritable();
KIVMETADATA_EXPORT void SetAllMetadataForcedWritable(bool forced);

} // namespace kivmetadata

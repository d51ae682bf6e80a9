#pragma once
// Internal to kivmetadataui: the naming rules of the metadata preferences
// dialog, for its tests. Not API.

#include "kivmetadataui_test_export_p.h"

#include <kivmetadata/PrimitiveType.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kivmetadata {
struct SchemaDefinition;
}

namespace kivmetadataui {

// The ending of a view-settings file: "Basic" is kept in "Basic.xmp_view_settings.xml".
inline constexpr char16_t kViewSettingsFileEnding[] = u".xmp_view_settings.xml";

// The localisation key of text `inText` for field `inField` ("schema_label",
// "schema_description", "property_name") of the custom schema `inIdentifier`,
// with the text as its default.
KIVMETADATAUI_TEST_EXPORT std::string
CustomSchemaLocalizationKey(std::string const &inIdentifier, std::string const &inField, std::string const &inText);
// The identifier that names a custom schema's localisation keys: the one in
// its label key, or its prefix for a schema whose label is no such key.
KIVMETADATAUI_TEST_EXPORT std::string CustomSchemaIdentifier(kivmetadata::SchemaDefinition const &inSchema);

// The primitive type of the add-property dialog's type index (0 Integer,
// 1 Real, 2 Text, 3 Boolean; anything else Integer).
KIVMETADATAUI_TEST_EXPORT kivmetadata::PrimitiveType PrimitiveTypeForPropertyTypeIndex(std::int32_t inIndex);

} // namespace kivmetadataui

#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadata/Path.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kivmetadata {
struct SchemaDefinition;
}
namespace kivui {
class UI_Node;
namespace drawbot {
class SupplierInterface;
}
} // namespace kivui

namespace kivmetadataui {

using SchemaDefinitionList = std::vector<std::shared_ptr<kivmetadata::SchemaDefinition>>;
using SchemaDefinitionSet = std::set<std::shared_ptr<kivmetadata::SchemaDefinition>>;

// The modal "Metadata Display" dialog: a check-box tree of the schemas in
// [inSchemasBegin, inSchemasEnd) and their properties in which the user
// chooses which leaf paths are shown. It also keeps named view settings as
// files "NAME.xmp_view_settings.xml" in `inSettingsFolder` (created when the
// first setting is saved; empty means kivmetadata::ViewSettingsDirectory()),
// creates custom schemas and adds properties to or deletes them from custom
// schemas; those files are written at once and stay whatever the outcome. A
// schema made here is registered with the metadata model but is not added to
// the caller's range: callers that list schemas read GetSchemaDefinitions()
// again afterwards.
//
// Keyboard: Space toggles the check box of the tree's current row; in a
// custom schema, Insert adds a property and Delete removes the current one.
//
// `ioSelectedPaths` (the checked leaves) and `ioOpenedSchemas` (the schemas
// whose rows are disclosed) are read at the start and written back only when
// the dialog is closed with OK, which is when it returns true.
// `inDrawSupplier` and `inParent` must be given.
KIVMETADATAUI_EXPORT bool DoMetadataPreferencesDialog(std::set<kivmetadata::Path> &ioSelectedPaths,
                                                      kivui::drawbot::SupplierInterface *inDrawSupplier,
                                                      kivui::UI_Node *inParent, SchemaDefinitionSet &ioOpenedSchemas,
                                                      std::u16string const &inSettingsFolder,
                                                      SchemaDefinitionList::const_iterator inSchemasBegin,
                                                      SchemaDefinitionList::const_iterator inSchemasEnd);

} // namespace kivmetadataui

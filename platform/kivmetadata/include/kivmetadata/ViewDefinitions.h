#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kivmetadata {

class ViewBuilderInterface;
struct ViewDefinition;

// Panels: the standard ones compiled into the library and the user's own
// from UserPanelDirectory(), loaded by Initialize. A user panel with the name
// of a standard one replaces it.
KIVMETADATA_EXPORT std::shared_ptr<ViewDefinition> GetViewDefinitionForName(std::string const &name);
// All panels: standard ones in a fixed order (Description, IPTC Core, IPTC
// Extension, Camera Data, GPS Data, Origin, Rights, Audio/Video), then the
// others by name.
KIVMETADATA_EXPORT std::vector<std::shared_ptr<ViewDefinition>> GetViewDefinitions();
KIVMETADATA_EXPORT void RegisterViewDefinition(std::shared_ptr<ViewDefinition> const &definition);
// The per-user panel folder (created on demand).
KIVMETADATA_EXPORT std::u16string UserPanelDirectory();
// Reads a panel file (format in docs/formats.md); null and an error record
// when it does not parse. Paths with unknown prefixes are kept (and skipped
// by BuildView).
KIVMETADATA_EXPORT std::shared_ptr<ViewDefinition>
ParseViewDefinition(std::string_view xml, std::u16string const &filePath, std::string *error = nullptr);
KIVMETADATA_EXPORT std::string ViewDefinitionAsXMLString(ViewDefinition const &definition);
// Loads and registers every "*.xml" panel of a folder; returns how many.
KIVMETADATA_EXPORT int LoadViewDefinitionsFromFolder(std::u16string const &folder);

// Walks the definition and calls the builder (see ViewBuilderInterface).
// False for a null definition; bad items are recorded as errors and skipped.
KIVMETADATA_EXPORT bool BuildView(std::shared_ptr<ViewDefinition> const &definition, ViewBuilderInterface &builder);

} // namespace kivmetadata

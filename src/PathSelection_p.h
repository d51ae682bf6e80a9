#pragma once
// The check-box rule shared by the metadata tree and the preferences dialog:
// a schema or structure row is unchecked when none of its leaves is selected,
// checked when every leaf the UI supports is selected, mixed otherwise; a
// forced-on leaf is always checked.

#include "kivmetadataui_test_export_p.h"

#include <kivmetadata/Path.h>

#include <cstddef>
#include <set>

namespace kivmetadata {
struct SchemaDefinition;
}

namespace kivmetadataui {

enum class CheckState { Unchecked, Checked, Mixed };

// How many descendant leaf paths (a leaf counts itself) are in `paths`.
KIVMETADATAUI_TEST_EXPORT std::size_t CountIncludedDescendantPaths(kivmetadata::Path const &inPath,
                                                                   std::set<kivmetadata::Path> const &inPaths);
KIVMETADATAUI_TEST_EXPORT std::size_t CountIncludedDescendantPaths(kivmetadata::SchemaDefinition const &inSchema,
                                                                   std::set<kivmetadata::Path> const &inPaths);
// How many descendant leaf paths the UI can show.
KIVMETADATAUI_TEST_EXPORT std::size_t CountSupportedDescendantLeafPaths(kivmetadata::Path const &inPath);
KIVMETADATAUI_TEST_EXPORT std::size_t CountSupportedDescendantLeafPaths(kivmetadata::SchemaDefinition const &inSchema);

KIVMETADATAUI_TEST_EXPORT CheckState SchemaCheckState(kivmetadata::SchemaDefinition const &inSchema,
                                                      std::set<kivmetadata::Path> const &inSelected);
// A leaf is checked when forced on (then `outForcedOn` is set) or selected; a
// structure follows the count rule of a schema.
KIVMETADATAUI_TEST_EXPORT CheckState PathCheckState(kivmetadata::Path const &inPath,
                                                    std::set<kivmetadata::Path> const &inForcedOn,
                                                    std::set<kivmetadata::Path> const &inSelected,
                                                    bool *outForcedOn = nullptr);

// Selects (or clears) every supported descendant leaf of a path or schema.
KIVMETADATAUI_TEST_EXPORT void SetDescendantLeavesSelected(kivmetadata::Path const &inPath, bool inSelected,
                                                           std::set<kivmetadata::Path> &ioSelected);
KIVMETADATAUI_TEST_EXPORT void SetDescendantLeavesSelected(kivmetadata::SchemaDefinition const &inSchema,
                                                           bool inSelected, std::set<kivmetadata::Path> &ioSelected);

} // namespace kivmetadataui

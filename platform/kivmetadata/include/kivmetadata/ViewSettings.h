#pragma once

#include <kivmetadata/Path.h>
#include <kivmetadata/kivmetadata_export.h>

#include <set>
#include <string>

namespace kivmetadata {

// The XML text of a view-settings file holding the given leaf paths
// (format in docs/formats.md).
KIVMETADATA_EXPORT bool IncludedLeafPathsAsXMLString(std::set<Path> const &paths, std::string &text);
// Reads a view-settings file into `paths` (replacing their content). False,
// `paths` untouched and an error record when the file is missing or does not
// parse.
KIVMETADATA_EXPORT bool ReadIncludedLeafPathsAsXMLFile(std::set<Path> &paths, std::u16string const &filePath);
KIVMETADATA_EXPORT bool ReadIncludedLeafPathsAsXMLString(std::set<Path> &paths, std::string const &text);
// The per-user folder for view settings (created on demand).
KIVMETADATA_EXPORT std::u16string ViewSettingsDirectory();

} // namespace kivmetadata

// Private to kivmetadata: the state of every top-level property of an XMP
// object, cheap to keep and to compare.
#pragma once

#include <kivmetadata/Path.h>

#include <map>
#include <string>
#include <vector>

namespace kivmetadata {
class XMPMeta;
}

namespace kivmetadata::detail {

// Each top-level property with every node below it (paths, values, options
// and qualifiers) flattened into one text.
using PropertySnapshot = std::map<Path, std::string>;

PropertySnapshot TakeSnapshot(XMPMeta const &meta);
// The properties whose text differs, those in only one snapshot included.
std::vector<Path> Differences(PropertySnapshot const &before, PropertySnapshot const &after);

} // namespace kivmetadata::detail

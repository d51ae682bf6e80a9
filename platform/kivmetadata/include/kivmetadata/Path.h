#pragma once

#include <compare>
#include <string>

namespace kivmetadata {

// Address of one property inside an XMP object: the schema namespace URI and
// the property path in the XMP toolkit's path syntax, both UTF-8:
// "dc:subject[2]", "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork".
// The prefixes are those the XMP toolkit has registered for the namespaces
// (PathForSchemaNameAndPropertyName makes them). An empty path stands for the
// whole packet.
struct Path {
    std::string mNamespace;
    std::string mPath;

    friend auto operator<=>(Path const &, Path const &) = default;
    friend bool operator==(Path const &, Path const &) = default;
};

} // namespace kivmetadata

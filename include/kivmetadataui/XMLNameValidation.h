#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <string>

namespace kivmetadataui {

// True when `name` may serve as the local name of an XML element or
// attribute: an XML 1.0 name without colon, not starting with "xml" in any
// case. Each UTF-16 unit is judged by itself.
KIVMETADATAUI_EXPORT bool VerifySimpleXMLName(std::u16string const &name);

// A name derived unit for unit from `text`: units that are not allowed where
// they stand become "_", and a leading "xml" gets a "_" in front. The empty
// text gives the empty string (which is no valid name).
KIVMETADATAUI_EXPORT std::u16string GenerateXMLNameFromUnicodeString(std::u16string const &text);

} // namespace kivmetadataui

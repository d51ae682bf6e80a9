// Private to kivmetadata: reading and writing property texts on an XMP
// object, shared by the providers and the typed access functions.
#pragma once

#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/Path.h>

#include <string>
#include <vector>

namespace kivmetadata {
class XMPMeta;
}

namespace kivmetadata::detail {

// Arrays of simple items read as their items joined by kDefaultSeparator,
// a language alternative as its default item.
GetValueResult ReadText(XMPMeta const *meta, Path const &path, std::string &text);
// The items of an array of simple items (or the value of a simple one).
std::vector<std::string> ReadItems(XMPMeta const *meta, Path const &path, GetValueResult &result);
// Writes the text in the property's form; false when nothing changed
// (same value) or the write failed (then with an error record).
bool WriteText(XMPMeta *meta, Path const &path, std::string const &text);
std::vector<std::string> SplitItems(std::string const &text);
std::string JoinItems(std::vector<std::string> const &items);
std::string DescribePath(Path const &path);

} // namespace kivmetadata::detail

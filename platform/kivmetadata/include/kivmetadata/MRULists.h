#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kivmetadata {

inline constexpr std::size_t kMRUListLength = 20;

// Most recently used entries per key (a property path), newest first, no
// duplicates, at most kMRUListLength, kept in the per-user data folder.
// `entries` are the texts just used, the first one the newest; empty texts
// are ignored.
KIVMETADATA_EXPORT void UpdateMRULists(std::string const &key, std::vector<std::u16string> const &entries);
KIVMETADATA_EXPORT std::vector<std::u16string> GetMRUList(std::string const &key);
KIVMETADATA_EXPORT void ClearMRULists();

} // namespace kivmetadata

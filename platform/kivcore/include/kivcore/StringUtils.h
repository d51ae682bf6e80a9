#pragma once

#include <kivcore/kivcore_export.h>

#include <string>
#include <string_view>

namespace kivcore::utility {

KIVCORE_EXPORT std::u16string Utf8ToUtf16(std::string_view utf8);
KIVCORE_EXPORT std::string Utf16ToUtf8(std::u16string_view utf16);

// White space as Unicode defines it (QChar::isSpace).
KIVCORE_EXPORT std::u16string Trim(std::u16string_view text);
KIVCORE_EXPORT std::u16string TrimLeft(std::u16string_view text);
KIVCORE_EXPORT std::u16string TrimRight(std::u16string_view text);
KIVCORE_EXPORT std::string Trim(std::string_view utf8);

// Simple Unicode case folding (one unit to one unit), for case-insensitive comparison.
KIVCORE_EXPORT std::u16string FoldCase(std::u16string_view text);
// Normalisation form C.
KIVCORE_EXPORT std::u16string NormalizedString(std::u16string_view text);

// Replaces every occurrence of `from` by `to`.
KIVCORE_EXPORT std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to);

} // namespace kivcore::utility

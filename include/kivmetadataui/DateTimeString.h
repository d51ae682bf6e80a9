#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadata/DateTime.h>

#include <string>

namespace kivmetadataui {

// Parses the loose date forms people type: "YYYY", "YYYY/MM", "YYYY-MM-DD",
// optionally followed by " " or "T", a time "HH[:MM[:SS]]" (":" "," or ";"
// between fields), a fraction ".d..." (up to nine digits) and a zone ("Z",
// "+HH", "-HH:MM"). True when the whole text is a valid date; on false the
// record may be partly filled and must not be used.
KIVMETADATAUI_EXPORT bool ParseDateTimeStr(std::u16string const &text, kivmetadata::XMP_DateTime &value);

// The text shown for a record: its ISO 8601 text with "T" replaced by a
// blank and a blank before the zone sign; empty for a record without date.
KIVMETADATAUI_EXPORT std::u16string FormatDateTimeStr(kivmetadata::XMP_DateTime const &value);

} // namespace kivmetadataui

#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <cstdint>
#include <string>

namespace kivmetadata {

// The XMP toolkit's date-time record. A parser starts from the all-zero
// record and sets only what its text supplies.
struct XMP_DateTime {
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    bool hasDate = false;
    bool hasTime = false;
    bool hasTimeZone = false;
    std::int8_t tzSign = 0; // +1 east of UTC, -1 west, 0 UTC
    std::int32_t tzHour = 0;
    std::int32_t tzMinute = 0;
    std::int32_t nanoSecond = 0;

    friend bool operator==(XMP_DateTime const &, XMP_DateTime const &) = default;
};

// ISO 8601 text of a record, as the XMP toolkit writes it: "YYYY" when the
// month is 0, "YYYY-MM" when the day is 0, else "YYYY-MM-DD", followed (for a
// full date with time) by "THH:MM", ":SS" when seconds or a fraction are
// present, ".fraction" without trailing zeros, and "Z" (zone sign 0) or a
// signed "+HH:MM" / "-HH:MM" when the record has a zone.
KIVMETADATA_EXPORT std::string ConvertFromDate(XMP_DateTime const &value);

// Reads the ISO 8601 forms that ConvertFromDate writes (and the time-only
// form "THH:MM..."); false for anything else.
KIVMETADATA_EXPORT bool ConvertToDate(std::string const &text, XMP_DateTime &value);

} // namespace kivmetadata

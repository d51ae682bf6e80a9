#pragma once
// Internal to kivmetadataui: the text people read for a stored value
// (rationals as numbers with their units, GPS coordinates in degrees and
// minutes, dates as the date editor shows them). Used only where a value is
// shown read-only: an editable field keeps the stored text, so that what is
// written back is what the user typed. Not API; exported only so that the
// library's tests reach it.

#include "kivmetadataui_test_export_p.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivmetadata {
struct PropertyDefinition;
} // namespace kivmetadata

namespace kivmetadataui {

enum class DisplayForm : std::uint8_t {
    kRaw,              // shown as stored
    kDate,             // "2026-11-23 20:13:41 +01:00"
    kGPSCoordinate,    // "48,51.3N" as 48° 51.3′ N
    kNumber,           // a rational as a number: "1/3" as 0.333
    kFNumber,          // "28/10" as f/2.8
    kApexAperture,     // an aperture in APEX units as its f-number
    kFocalLength,      // "350/10" as 35 mm
    kExposureTime,     // "1/125" as 1/125 s, "2/1" as 2 s
    kApexShutterSpeed, // a shutter speed in APEX units as its exposure time
    kExposureBias,     // "-1/3" as -1/3 EV
    kMetres,           // "1234/10" as 123.4 m
    kDegrees,          // "2705/10" as 270.5°
};

// The form in which values of the property are read: some exif and aux
// properties by name, otherwise by type id ("date", "gpsCoordinate",
// "rational").
KIVMETADATAUI_TEST_EXPORT DisplayForm DisplayFormOf(kivmetadata::PropertyDefinition const &inDefinition);

// The value in that form; empty when the stored text is not a value of that
// form (the caller then shows the stored text as it is) and for kRaw.
KIVMETADATAUI_TEST_EXPORT std::optional<std::u16string> FormatForDisplay(DisplayForm inForm, std::string_view inRaw);

} // namespace kivmetadataui

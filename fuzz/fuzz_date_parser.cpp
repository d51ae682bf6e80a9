// ParseDateTimeStr on any text, read as UTF-8 (what people type) and as raw
// UTF-16 units (lone surrogates included). A text that parses shows, through
// FormatDateTimeStr, as a text that parses back to the same record: the date
// edit relies on it when it normalises what was typed.
#include "FuzzRequire.h"
#include "FuzzText.h"

#include <kivmetadataui/DateTimeString.h>

#include <kivcore/StringUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using kivmetadata::XMP_DateTime;

void Check(std::u16string const &text)
{
    XMP_DateTime value;
    if (!kivmetadataui::ParseDateTimeStr(text, value)) return;
    REQUIRE(value.hasDate);
    std::u16string const shown = kivmetadataui::FormatDateTimeStr(value);
    REQUIRE(!shown.empty());
    // A UTC zone ("Z", sign 0) shows with its blank before the date's last
    // '-', which does not read back; the date edit keeps that form.
    if (value.hasTimeZone && value.tzSign == 0) return;
    XMP_DateTime again;
    REQUIRE(kivmetadataui::ParseDateTimeStr(shown, again) && again == value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    CheckAsTexts(data, size, Check);
    return 0;
}

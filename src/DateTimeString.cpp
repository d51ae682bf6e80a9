#include <kivmetadataui/DateTimeString.h>

#include <kivcore/StringUtils.h>

#include <string_view>

namespace kivmetadataui {
namespace {

using kivmetadata::XMP_DateTime;

inline bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

inline bool IsBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v' || c == 0x00A0 ||
           c == 0x3000 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x1680 || c == 0x0085;
}

std::u16string_view TrimView(std::u16string_view s)
{
    std::size_t b = 0, e = s.size();
    while (b < e && IsBlank(s[b]))
        ++b;
    while (e > b && IsBlank(s[e - 1]))
        --e;
    return s.substr(b, e - b);
}

// Two decimal digits at `at`.
bool TwoDigits(std::u16string_view s, std::size_t at, std::int32_t &value)
{
    if (at + 2 > s.size() || !IsDigit(s[at]) || !IsDigit(s[at + 1])) return false;
    value = (s[at] - u'0') * 10 + (s[at + 1] - u'0');
    return true;
}

inline bool IsClockSeparator(char16_t c)
{
    return c == u':' || c == u',' || c == u';';
}

bool IsLeapYear(std::int32_t y)
{
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

std::int32_t DaysInMonth(std::int32_t year, std::int32_t month)
{
    switch (month) {
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    case 2:
        return IsLeapYear(year) ? 29 : 28;
    default:
        return 31;
    }
}

bool ParseClock(std::u16string_view clock, XMP_DateTime &v)
{
    const std::size_t n = clock.size();
    if (n != 2 && n != 5 && n != 8) return false;
    std::int32_t hour = 0, minute = 0, second = 0;
    if (!TwoDigits(clock, 0, hour)) return false;
    if (n >= 5 && (!IsClockSeparator(clock[2]) || !TwoDigits(clock, 3, minute))) return false;
    if (n == 8 && (clock[5] != clock[2] || !TwoDigits(clock, 6, second))) return false;
    if (hour > 24 || minute > 59 || second > 59) return false;
    if (hour == 24 && (minute != 0 || second != 0)) return false;
    v.hour = hour;
    v.minute = minute;
    v.second = second;
    v.hasTime = true;
    return true;
}

bool ParseFraction(std::u16string_view fraction, XMP_DateTime &v)
{
    fraction = TrimView(fraction);
    // The '.' and one to nine digits.
    if (fraction.size() < 2 || fraction.size() > 10) return false;
    std::int32_t nano = 0;
    for (std::size_t i = 1; i < fraction.size(); ++i) {
        if (!IsDigit(fraction[i])) return false;
        nano = nano * 10 + (fraction[i] - u'0');
    }
    for (std::size_t i = fraction.size(); i < 10; ++i)
        nano *= 10;
    v.nanoSecond = nano;
    return true;
}

bool ParseZone(std::u16string_view zone, XMP_DateTime &v)
{
    if (zone == u"Z") {
        v.hasTimeZone = true;
        v.tzSign = 0;
        v.tzHour = 0;
        v.tzMinute = 0;
        return true;
    }
    if (zone.size() != 3 && zone.size() != 6) return false;
    std::int32_t hour = 0, minute = 0;
    if (!TwoDigits(zone, 1, hour)) return false;
    if (zone.size() == 6 && (!IsClockSeparator(zone[3]) || !TwoDigits(zone, 4, minute))) return false;
    if (hour > 23 || minute > 59) return false;
    v.hasTimeZone = true;
    v.tzSign = zone[0] == u'+' ? 1 : -1;
    v.tzHour = hour;
    v.tzMinute = minute;
    return true;
}

bool ParseTimePart(std::u16string_view t, XMP_DateTime &v)
{
    if (t.empty() || (t[0] != u' ' && t[0] != u'T')) return false;
    t.remove_prefix(1);

    // A zone letter anywhere wins over a sign.
    std::size_t zoneAt = t.find(u'Z');
    if (zoneAt == std::u16string_view::npos) zoneAt = t.find(u'+');
    if (zoneAt == std::u16string_view::npos) zoneAt = t.find(u'-');
    std::u16string_view zone;
    if (zoneAt != std::u16string_view::npos) {
        zone = t.substr(zoneAt);
        t = t.substr(0, zoneAt);
    }
    const std::size_t dot = t.find(u'.');
    std::u16string_view fraction;
    if (dot != std::u16string_view::npos) {
        fraction = t.substr(dot);
        t = t.substr(0, dot);
    }
    if (!ParseClock(TrimView(t), v)) return false;
    if (dot != std::u16string_view::npos && !ParseFraction(fraction, v)) return false;
    if (zoneAt != std::u16string_view::npos && !ParseZone(zone, v)) return false;
    return true;
}

} // namespace

bool ParseDateTimeStr(std::u16string const &text, XMP_DateTime &value)
{
    value = XMP_DateTime{};
    if (text.empty()) return false;
    const std::u16string_view s = TrimView(text);
    const std::size_t length = s.size();
    if (length != 4 && length != 7 && length < 10) return false;

    std::int32_t year = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (!IsDigit(s[i])) return false;
        year = year * 10 + (s[i] - u'0');
    }
    value.year = year;
    value.hasDate = true;

    if (length >= 7) {
        if (s[4] != u'/' && s[4] != u'-') return false;
        std::int32_t month = 0;
        if (!TwoDigits(s, 5, month) || month < 1 || month > 12) return false;
        value.month = month;
    }
    if (length >= 10) {
        if (s[7] != s[4]) return false;
        std::int32_t day = 0;
        if (!TwoDigits(s, 8, day) || day < 1 || day > DaysInMonth(year, value.month)) return false;
        value.day = day;
    }
    if (length > 10) return ParseTimePart(s.substr(10), value);
    return true;
}

std::u16string FormatDateTimeStr(kivmetadata::XMP_DateTime const &value)
{
    if (!value.hasDate) return {};
    const std::string iso = kivmetadata::ConvertFromDate(value);
    std::u16string text(iso.begin(), iso.end()); // the ISO text is ASCII
    for (char16_t &c : text) {
        if (c == u'T') c = u' ';
    }
    // A zone east or west of UTC is set apart: "+02:00"; UTC stays "Z".
    if (value.hasTimeZone && value.tzSign != 0) {
        const char16_t sign = value.tzSign > 0 ? u'+' : u'-';
        const std::size_t at = text.rfind(sign);
        if (at != std::u16string::npos) text.insert(at, 1, u' ');
    }
    return text;
}

} // namespace kivmetadataui

#include <kivmetadata/DateTime.h>

#include <cstdio>
#include <cstdlib>

namespace kivmetadata {
namespace {

void AppendTime(std::string &out, XMP_DateTime const &v)
{
    char buffer[64];
    if (v.second == 0 && v.nanoSecond == 0) {
        std::snprintf(buffer, sizeof buffer, "T%02d:%02d", v.hour, v.minute);
        out += buffer;
    } else if (v.nanoSecond == 0) {
        std::snprintf(buffer, sizeof buffer, "T%02d:%02d:%02d", v.hour, v.minute, v.second);
        out += buffer;
    } else {
        std::snprintf(buffer, sizeof buffer, "T%02d:%02d:%02d.%09d", v.hour, v.minute, v.second, v.nanoSecond);
        std::string text = buffer;
        while (text.back() == '0')
            text.pop_back();
        out += text;
    }
    if (v.hasTimeZone) {
        if (v.tzSign == 0) {
            out += 'Z';
        } else {
            std::snprintf(buffer, sizeof buffer, "%c%02d:%02d", v.tzSign < 0 ? '-' : '+', v.tzHour, v.tzMinute);
            out += buffer;
        }
    }
}

// Reads exactly `count` digits at `at`.
bool Digits(std::string const &s, std::size_t at, std::size_t count, int &value)
{
    if (at + count > s.size()) return false;
    value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (s[i] < '0' || s[i] > '9') return false;
        value = value * 10 + (s[i] - '0');
    }
    return true;
}

bool ParseTime(std::string const &s, std::size_t at, XMP_DateTime &v)
{
    int h = 0, m = 0;
    if (!Digits(s, at, 2, h) || at + 2 >= s.size() || s[at + 2] != ':' || !Digits(s, at + 3, 2, m)) return false;
    v.hour = h;
    v.minute = m;
    v.hasTime = true;
    at += 5;
    if (at < s.size() && s[at] == ':') {
        int sec = 0;
        if (!Digits(s, at + 1, 2, sec)) return false;
        v.second = sec;
        at += 3;
        if (at < s.size() && s[at] == '.') {
            ++at;
            int nano = 0, digits = 0;
            while (at < s.size() && s[at] >= '0' && s[at] <= '9') {
                if (digits < 9) {
                    nano = nano * 10 + (s[at] - '0');
                    ++digits;
                }
                ++at;
            }
            if (digits == 0) return false;
            while (digits++ < 9)
                nano *= 10;
            v.nanoSecond = nano;
        }
    }
    if (at == s.size()) return true;
    if (s[at] == 'Z' && at + 1 == s.size()) {
        v.hasTimeZone = true;
        return true;
    }
    if (s[at] != '+' && s[at] != '-') return false;
    int th = 0, tm = 0;
    if (!Digits(s, at + 1, 2, th) || at + 3 >= s.size() || s[at + 3] != ':' || !Digits(s, at + 4, 2, tm) ||
        at + 6 != s.size())
        return false;
    v.hasTimeZone = true;
    v.tzSign = s[at] == '-' ? -1 : 1;
    v.tzHour = th;
    v.tzMinute = tm;
    return true;
}

} // namespace

std::string ConvertFromDate(XMP_DateTime const &v)
{
    char buffer[64];
    std::string out;
    if (!v.hasDate && v.hasTime) {
        AppendTime(out, v);
        return out;
    }
    if (v.month == 0) {
        std::snprintf(buffer, sizeof buffer, "%.4d", v.year);
        out = buffer;
    } else if (v.day == 0) {
        std::snprintf(buffer, sizeof buffer, "%.4d-%02d", v.year, v.month);
        out = buffer;
    } else {
        std::snprintf(buffer, sizeof buffer, "%.4d-%02d-%02d", v.year, v.month, v.day);
        out = buffer;
        if (v.hasTime) AppendTime(out, v);
    }
    return out;
}

bool ConvertToDate(std::string const &s, XMP_DateTime &v)
{
    v = XMP_DateTime{};
    if (s.empty()) return false;
    if (s[0] == 'T') return ParseTime(s, 1, v);
    std::size_t at = 0;
    bool negative = false;
    if (s[0] == '-') {
        negative = true;
        at = 1;
    }
    int year = 0;
    if (!Digits(s, at, 4, year)) return false;
    at += 4;
    // Years beyond four digits.
    while (at < s.size() && s[at] >= '0' && s[at] <= '9')
        year = year * 10 + (s[at++] - '0');
    v.year = negative ? -year : year;
    v.hasDate = true;
    if (at == s.size()) return true;
    int month = 0, day = 0;
    if (s[at] != '-' || !Digits(s, at + 1, 2, month) || month < 1 || month > 12) return false;
    v.month = month;
    at += 3;
    if (at == s.size()) return true;
    if (s[at] != '-' || !Digits(s, at + 1, 2, day) || day < 1 || day > 31) return false;
    v.day = day;
    at += 3;
    if (at == s.size()) return true;
    if (s[at] != 'T') return false;
    return ParseTime(s, at + 1, v);
}

} // namespace kivmetadata

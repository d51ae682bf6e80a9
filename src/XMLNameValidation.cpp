#include <kivmetadataui/XMLNameValidation.h>

#include <kivcore/Assert.h>

namespace kivmetadataui {
namespace {

// XML 1.0 (fifth edition) NameStartChar without ':' and without U+FDF0-U+FFFD.
constexpr bool IsXMLNameStartChar(char16_t c)
{
    if (c < 0x80) return (c >= u'A' && c <= u'Z') || c == u'_' || (c >= u'a' && c <= u'z');
    return (c >= 0x00C0 && c <= 0x00D6) || (c >= 0x00D8 && c <= 0x00F6) || (c >= 0x00F8 && c <= 0x02FF) ||
           (c >= 0x0370 && c <= 0x037D) || (c >= 0x037F && c <= 0x1FFF) || (c >= 0x200C && c <= 0x200D) ||
           (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFDCF);
}

constexpr bool IsXMLNameChar(char16_t c)
{
    if (c < 0x80) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_' ||
               c == u'-' || c == u'.';
    }
    return IsXMLNameStartChar(c) || c == 0x00B7 || (c >= 0x0300 && c <= 0x036F) || (c >= 0x203F && c <= 0x2040);
}

// A table of both classes for the units below U+0080, the common case.
struct AsciiClasses {
    bool start[128];
    bool name[128];
    constexpr AsciiClasses() : start(), name()
    {
        for (char16_t c = 0; c < 128; ++c) {
            start[c] = IsXMLNameStartChar(c);
            name[c] = IsXMLNameChar(c);
        }
    }
};
constexpr AsciiClasses kAscii;

inline bool StartChar(char16_t c)
{
    return c < 0x80 ? kAscii.start[c] : IsXMLNameStartChar(c);
}

inline bool NameChar(char16_t c)
{
    return c < 0x80 ? kAscii.name[c] : IsXMLNameChar(c);
}

bool StartsWithXml(std::u16string const &s)
{
    return s.size() >= 3 && (s[0] == u'x' || s[0] == u'X') && (s[1] == u'm' || s[1] == u'M') &&
           (s[2] == u'l' || s[2] == u'L');
}

} // namespace

bool VerifySimpleXMLName(std::u16string const &name)
{
    if (name.empty() || !StartChar(name[0])) return false;
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (!NameChar(name[i])) return false;
    }
    return !StartsWithXml(name);
}

std::u16string GenerateXMLNameFromUnicodeString(std::u16string const &text)
{
    if (text.empty()) return text;
    const std::size_t n = text.size();
    // The leading "xml" test reads the input: replaced units are '_' and never
    // spell it, so the output starts with "xml" exactly when the input does.
    const bool prefix = StartsWithXml(text);
    std::u16string result(n + (prefix ? 1 : 0), u'_');
    char16_t *out = result.data() + (prefix ? 1 : 0);
    char16_t const *in = text.data();
    out[0] = StartChar(in[0]) ? in[0] : u'_';
    for (std::size_t i = 1; i < n; ++i)
        out[i] = NameChar(in[i]) ? in[i] : u'_';
    KIV_ASSERT("src/XMLNameValidation", "kivmetadataui::GenerateXMLNameFromUnicodeString", VerifySimpleXMLName(result));
    return result;
}

} // namespace kivmetadataui

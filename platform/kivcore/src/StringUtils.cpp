#include <kivcore/StringUtils.h>

#include <QString>

namespace kivcore::utility {
namespace {

QString ToQ(std::u16string_view s)
{
    return QString(reinterpret_cast<QChar const *>(s.data()), static_cast<qsizetype>(s.size()));
}

std::u16string FromQ(QString const &s)
{
    return std::u16string(reinterpret_cast<char16_t const *>(s.utf16()), static_cast<std::size_t>(s.size()));
}

bool IsSpace(char16_t c)
{
    return QChar(c).isSpace();
}

} // namespace

std::u16string Utf8ToUtf16(std::string_view utf8)
{
    return FromQ(QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())));
}

std::string Utf16ToUtf8(std::u16string_view utf16)
{
    return ToQ(utf16).toStdString();
}

std::u16string TrimLeft(std::u16string_view text)
{
    std::size_t b = 0;
    while (b < text.size() && IsSpace(text[b]))
        ++b;
    return std::u16string(text.substr(b));
}

std::u16string TrimRight(std::u16string_view text)
{
    std::size_t e = text.size();
    while (e > 0 && IsSpace(text[e - 1]))
        --e;
    return std::u16string(text.substr(0, e));
}

std::u16string Trim(std::u16string_view text)
{
    std::size_t b = 0, e = text.size();
    while (b < e && IsSpace(text[b]))
        ++b;
    while (e > b && IsSpace(text[e - 1]))
        --e;
    return std::u16string(text.substr(b, e - b));
}

std::string Trim(std::string_view utf8)
{
    auto space = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; };
    std::size_t b = 0, e = utf8.size();
    while (b < e && space(utf8[b]))
        ++b;
    while (e > b && space(utf8[e - 1]))
        --e;
    return std::string(utf8.substr(b, e - b));
}

std::u16string FoldCase(std::u16string_view text)
{
    return FromQ(ToQ(text).toCaseFolded());
}

std::u16string NormalizedString(std::u16string_view text)
{
    return FromQ(ToQ(text).normalized(QString::NormalizationForm_C));
}

std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to)
{
    if (from.empty()) return text;
    std::size_t at = 0;
    while ((at = text.find(from, at)) != std::u16string::npos) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
    return text;
}

} // namespace kivcore::utility

// Fuzz input read as text both ways people's text reaches us: as UTF-8, and
// as raw UTF-16 units (lone surrogates included).
#pragma once

#include <kivcore/StringUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

template <typename Check> void CheckAsTexts(std::uint8_t const *data, std::size_t size, Check const &check)
{
    check(kivcore::utility::Utf8ToUtf16(std::string_view(reinterpret_cast<char const *>(data), size)));
    std::u16string units(size / 2, u'\0');
    if (!units.empty()) std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
    check(units);
}

// GenerateXMLNameFromUnicodeString and VerifySimpleXMLName on any text, read
// as UTF-8 and as raw UTF-16 units: a generated name always verifies, keeps
// or replaces each unit in place, and a valid name generates itself.
#include "FuzzRequire.h"
#include "FuzzText.h"

#include <kivmetadataui/XMLNameValidation.h>

#include <kivcore/Assert.h>
#include <kivcore/StringUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using kivmetadataui::GenerateXMLNameFromUnicodeString;
using kivmetadataui::VerifySimpleXMLName;

void Check(std::u16string const &text)
{
    std::u16string const name = GenerateXMLNameFromUnicodeString(text);
    if (text.empty()) {
        REQUIRE(name.empty());
        return;
    }
    REQUIRE(VerifySimpleXMLName(name));
    // One unit in front for a leading "xml", then one unit per unit.
    std::size_t const shift = name.size() - text.size();
    REQUIRE(shift <= 1 && (shift == 0 || name[0] == u'_'));
    for (std::size_t i = 0; i < text.size(); ++i) {
        REQUIRE(name[i + shift] == text[i] || name[i + shift] == u'_');
    }
    REQUIRE(!VerifySimpleXMLName(text) || name == text);
    REQUIRE(GenerateXMLNameFromUnicodeString(name) == name);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // The generator asserts its own result; an assertion is a finding.
    kivcore::debug::SetAssertHandler([](kivcore::debug::AssertInfo const &) { __builtin_trap(); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    CheckAsTexts(data, size, Check);
    return 0;
}

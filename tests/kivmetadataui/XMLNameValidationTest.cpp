#include <kivmetadataui/XMLNameValidation.h>

#include <kivcore/Assert.h>

#include <gtest/gtest.h>

using kivmetadataui::GenerateXMLNameFromUnicodeString;
using kivmetadataui::VerifySimpleXMLName;

TEST(XMLNameValidationTest, AcceptsAndRefuses)
{
    const std::u16string accepted[] = {
        u"goodName123",   u"_",           u"a",       u"Z",       u"a1-b.c_d",     u"xm",           u"x",
        u"_xml",          u"axml",        u"a\u00B7", u"a\u0301", u"\u00C0\u00C0", u"\u00F8\u00F8", u"\uFDCF",
        u"a\u203F\u2040", u"\u65E5\u672C"};
    for (auto const &name : accepted)
        EXPECT_TRUE(VerifySimpleXMLName(name)) << std::string(name.begin(), name.end());

    const std::u16string refused[] = {
        u"",       u"<>&'",    u"1",      u"-",       u".",          u":",           u"a:b",     u"a b",    u"xml",
        u"XmL",    u"xmlns",   u"XMLfoo", u"\u00B7a", u"\u0301a",    u"\u00D7",      u"a\u00D7", u"\u00F7", u"a\u00F7",
        u"\uFDD0", u"a\uFDD0", u"\uFFFD", u"a\uFFFD", u"\U0001F4F7", u"a\U0001F4F7", u"a\u037E", u"a\u2000"};
    for (auto const &name : refused)
        EXPECT_FALSE(VerifySimpleXMLName(name));
}

TEST(XMLNameValidationTest, GeneratesValidNamesUnitForUnit)
{
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"", u""},
        {u"<>&'", u"____"},
        {u"1abc", u"_abc"},
        {u"1", u"_"},
        {u"-", u"_"},
        {u":", u"_"},
        {u"a:b", u"a_b"},
        {u"a b", u"a_b"},
        {u"xml", u"_xml"},
        {u"XmL", u"_XmL"},
        {u"xmlns", u"_xmlns"},
        {u"XMLfoo", u"_XMLfoo"},
        {u"xm", u"xm"},
        {u"\u00B7a", u"_a"},
        {u"a\u00B7", u"a\u00B7"},
        {u"\u0301", u"_"},
        {u"\u00D7\u00D7", u"__"},
        {u"\u00C0\u00F8", u"\u00C0\u00F8"},
        {u"\uFDD0\uFFFD", u"__"},
        {u"a\U0001F4F7", u"a__"},
        {u"NewProperty", u"NewProperty"},
    };
    const long before = kivcore::debug::AssertCount();
    for (auto const &[in, out] : cases) {
        EXPECT_EQ(GenerateXMLNameFromUnicodeString(in), out);
        if (!in.empty()) {
            EXPECT_TRUE(VerifySimpleXMLName(GenerateXMLNameFromUnicodeString(in)));
        }
    }
    EXPECT_EQ(kivcore::debug::AssertCount(), before); // the self-check never fires
}

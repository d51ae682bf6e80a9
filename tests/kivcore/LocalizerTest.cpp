#include <kivcore/FileUtils.h>
#include <kivcore/Localizer.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

using kivcore::config::Localizer;

TEST(LocalizerTest, DefaultsPlaceholdersAndEscapes)
{
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/none=No Data"), u"No Data");
    EXPECT_EQ(Localizer::Localize("$$$/kivmetadataui/MetadataView/entries=(@0 entries)", {u"3"}), u"(3 entries)");
    // One pass: an argument is not scanned again; missing arguments stay.
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/two=@1 and @0 and @2", {u"@1", u"b"}), u"b and @1 and @2");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/tz=#{plusmn}HH:MM #{unknown}"), u"\u00B1HH:MM #{unknown}");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/eq=a=b"), u"a=b"); // only the first '=' splits
    EXPECT_EQ(Localizer::KeyOf("$$$/a/b=Text"), "$$$/a/b");
    EXPECT_EQ(Localizer::DefaultOf("plain text"), "plain text");
}

TEST(LocalizerTest, DictionariesByLocaleThenLanguageThenDefault)
{
    QTemporaryDir dir;
    const std::u16string folder = dir.path().toStdU16String();
    using kivcore::utility::FileUtils;
    ASSERT_TRUE(FileUtils::SimpleWriteStringToFile(FileUtils::Join(folder, u"de.txt"),
                                                   "# German\n$$$/kivtest/a=Hallo\n$$$/kivtest/b=Sprache\n"));
    ASSERT_TRUE(
        FileUtils::SimpleWriteStringToFile(FileUtils::Join(folder, u"de_AT.txt"), "$$$/kivtest/a=Servus @0\r\n"));
    Localizer::AddDictionaryFolder(folder);
    Localizer::SetLocale("de_AT");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/a=Hello @0", {u"Wien"}), u"Servus Wien");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/b=Language"), u"Sprache");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/c=Fallback"), u"Fallback");
    Localizer::SetLocale("fr_FR");
    EXPECT_EQ(Localizer::Localize("$$$/kivtest/a=Hello"), u"Hello");
    Localizer::SetLocale("en_US");
}

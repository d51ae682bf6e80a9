#include <kivmetadataui/DateTimeString.h>

#include <kivmetadata/DateTime.h>

#include <gtest/gtest.h>

#include <vector>

using kivmetadata::XMP_DateTime;
using kivmetadataui::FormatDateTimeStr;
using kivmetadataui::ParseDateTimeStr;

namespace {

std::string Narrow(std::u16string const &s)
{
    return std::string(s.begin(), s.end());
}

} // namespace

TEST(DateTimeStringTest, AcceptsTheLooseFormsAndRefusesEverythingElse)
{
    const std::vector<std::u16string> accepted = {u"0000",
                                                  u"0001",
                                                  u"0099  ",
                                                  u"1399",
                                                  u"2013",
                                                  u"    9999            ",
                                                  u"   2013/01   ",
                                                  u"2013-12",
                                                  u"2013/01/01",
                                                  u"0034-12-31",
                                                  u"0034-08-31",
                                                  u"0034/07/31",
                                                  u"2400-02-29",
                                                  u"2012/02/29",
                                                  u"   2013/04/30   ",
                                                  u"2013/01/01 24",
                                                  u"2013/01/01 00",
                                                  u"2013/01/01T  23 ",
                                                  u"2013/01/01 24;00",
                                                  u"2013/01/01 23:59",
                                                  u"2013/01/01 00,00",
                                                  u"2013/01/01T24;00",
                                                  u"2013/01/01 00:00:00",
                                                  u"2013/01/01 24:00:00",
                                                  u"2013/01/01 23;59;59",
                                                  u"2013-01-01T12,59,59",
                                                  u"2013-01-01T   12:59:00.00000001",
                                                  u"2013-01-01 01:01:01.000000001",
                                                  u"2013-01-01T 01:01:01",
                                                  u"2013/01/01 23;59;59.9Z",
                                                  u"2013/01/01T 23;59;59.12345678 Z",
                                                  u"2013/01/01 00:00:00+01",
                                                  u"2013/01/01 00:00:00+00:00",
                                                  u"2013/01/01 12:00:00-00;00",
                                                  u"2013-01-01 01:01:01 +05,30",
                                                  u"2013/01/01 00:22:01.123456789+03:59",
                                                  u"2013-01-01T 00:00:00.1-03;59",
                                                  u"2013/01/01 00:22:01.1 +23:59",
                                                  u"2013-01-01T 00:00:00.1-23;59"};
    const std::vector<std::u16string> refused = {u"",
                                                 u"0",
                                                 u"98",
                                                 u"999",
                                                 u"12345",
                                                 u"-2013",
                                                 u"AAAA",
                                                 u"1abc",
                                                 u"-123",
                                                 u"2013-",
                                                 u"2013#12",
                                                 u"2013,12",
                                                 u"2013;12",
                                                 u"2013:12",
                                                 u"2013/13",
                                                 u"2013/00",
                                                 u"2013//01",
                                                 u"999/12",
                                                 u"10000/12",
                                                 u"2013/1",
                                                 u"2013/aa",
                                                 u"2013/a1",
                                                 u"aaaaaaa",
                                                 u"aaaa/aa",
                                                 u"2013-001",
                                                 u"2013-01-",
                                                 u"201301",
                                                 u"20131212",
                                                 u"2013-01-32",
                                                 u"2013-01-011",
                                                 u"2013-01/01",
                                                 u"2013@01@011",
                                                 u"2013/01/aa",
                                                 u"2013/01/1a",
                                                 u"aaaaaaaaaa",
                                                 u"2013-02-29",
                                                 u"2012-02-30",
                                                 u"2100-02-29",
                                                 u"2100-04-31",
                                                 u"2100-04-00",
                                                 u"2100-13-01",
                                                 u"2013-01-01T",
                                                 u"2013-01-01$",
                                                 u"2013.01.01",
                                                 u"20131212 T 010101",
                                                 u"20131212,010101",
                                                 u"2013-01-01 01 01 01",
                                                 u"2013-01-01 01$01$01",
                                                 u"2013-01-01,,01:01:01",
                                                 u"2013-01-01 01801801",
                                                 u"2013-01-01 01:01:01.0000000001",
                                                 u"2013-01-01 24:01:01",
                                                 u"2013-01-01 22:60:01",
                                                 u"2013-01-01 00:01:60",
                                                 u"2013-01-01 01:01:01 +05$30",
                                                 u"2013-01-01 01;01;01 +24:30",
                                                 u"2013-01-01T01:01:01.000000001 +05:30Z",
                                                 u"2013-01-01T01:01:01.000000001Z +05:30",
                                                 u"2013-01-01 01:01:01 GMT",
                                                 u"2013-01-01 01:01:01 GMT+05:30",
                                                 u"1807-08-31 11a11a11 -05&30",
                                                 u"1807-08-31 11$11$11 -05(30",
                                                 u"1807-08-31 11411411 -05c30",
                                                 u"1807-08-31,, 23:59:59 +22:22",
                                                 u"1807-08-31@@ 00:59:59 +22:22",
                                                 u"9999-12-31 00;;;;00",
                                                 u"9999-12-31 00aaaa00",
                                                 u"9999&11",
                                                 u"1807-08-31 YYYYYYYYY+XXXXX",
                                                 u"1807-08-31 02:02+XXXXX",
                                                 u"2013-01-01 01:01:01.",
                                                 u"2013-01-01 01:01:01.1a"};
    for (auto const &[texts, valid] : {std::pair{&accepted, true}, {&refused, false}}) {
        for (auto const &text : *texts) {
            XMP_DateTime v;
            EXPECT_EQ(ParseDateTimeStr(text, v), valid) << Narrow(text);
        }
    }
}

TEST(DateTimeStringTest, FillsTheRecord)
{
    const std::pair<std::u16string, XMP_DateTime> cases[] = {
        {u"2013/01/01 00:22:01.123456789+03:59", {2013, 1, 1, 0, 22, 1, true, true, true, 1, 3, 59, 123456789}},
        {u"2013/01/01 23;59;59.9Z", {2013, 1, 1, 23, 59, 59, true, true, true, 0, 0, 0, 900000000}},
        {u"2013-01-01T   12:59:00.00000001", {2013, 1, 1, 12, 59, 0, true, true, false, 0, 0, 0, 10}},
        {u"2013/01/01 12:00:00-00;00", {2013, 1, 1, 12, 0, 0, true, true, true, -1, 0, 0, 0}},
        {u"   2013/01   ", {2013, 1, 0, 0, 0, 0, true, false, false, 0, 0, 0, 0}},
        {u"0000", {0, 0, 0, 0, 0, 0, true, false, false, 0, 0, 0, 0}},
    };
    for (auto const &[text, expected] : cases) {
        XMP_DateTime v;
        ASSERT_TRUE(ParseDateTimeStr(text, v)) << Narrow(text);
        EXPECT_EQ(v, expected) << Narrow(text);
    }
}

TEST(DateTimeStringTest, IsoConversionAndDisplayForm)
{
    using kivmetadata::ConvertFromDate;
    const std::pair<XMP_DateTime, std::string> iso[] = {
        {{2013, 0, 0, 0, 0, 0, true, false, false, 0, 0, 0, 0}, "2013"},
        {{2013, 4, 0, 0, 0, 0, true, false, false, 0, 0, 0, 0}, "2013-04"},
        {{34, 12, 31, 0, 0, 0, true, false, false, 0, 0, 0, 0}, "0034-12-31"},
        {{2013, 1, 1, 12, 5, 0, true, true, false, 0, 0, 0, 0}, "2013-01-01T12:05"},
        {{2013, 1, 1, 12, 5, 7, true, true, false, 0, 0, 0, 0}, "2013-01-01T12:05:07"},
        {{2013, 1, 1, 12, 5, 0, true, true, false, 0, 0, 0, 500000000}, "2013-01-01T12:05:00.5"},
        {{2013, 1, 1, 12, 0, 0, true, true, true, 0, 0, 0, 0}, "2013-01-01T12:00Z"},
        {{2013, 1, 1, 12, 0, 0, true, true, true, -1, 8, 0, 0}, "2013-01-01T12:00-08:00"},
        {{2013, 1, 1, 12, 0, 0, true, true, true, 1, 5, 30, 0}, "2013-01-01T12:00+05:30"},
    };
    for (auto const &[record, text] : iso) {
        EXPECT_EQ(ConvertFromDate(record), text);
        XMP_DateTime back;
        ASSERT_TRUE(kivmetadata::ConvertToDate(text, back)) << text;
        if (record.tzSign == 0) {
            EXPECT_EQ(back, record) << text;
        }
    }
    XMP_DateTime junk;
    EXPECT_FALSE(kivmetadata::ConvertToDate("2013-13-01", junk));
    EXPECT_FALSE(kivmetadata::ConvertToDate("2013-01-01T1", junk));

    EXPECT_EQ(FormatDateTimeStr(XMP_DateTime{}), u"");
    EXPECT_EQ(FormatDateTimeStr({2013, 1, 1, 12, 0, 0, true, true, true, 1, 5, 30, 0}), u"2013-01-01 12:00 +05:30");
    EXPECT_EQ(FormatDateTimeStr({2013, 1, 1, 12, 0, 0, true, true, true, -1, 5, 0, 0}), u"2013-01-01 12:00 -05:00");
    // Zone sign zero: the blank goes before the last '-' of the text.
    EXPECT_EQ(FormatDateTimeStr({2013, 1, 1, 12, 0, 0, true, true, true, 0, 0, 0, 0}), u"2013-01 -01 12:00Z");

    // Typed text normalises through parse and format, and parses back.
    XMP_DateTime v;
    ASSERT_TRUE(ParseDateTimeStr(u"2013/01/01T 23;59;59.12345678 Z", v));
    ASSERT_TRUE(ParseDateTimeStr(u"2013-01-01 01:01:01 +05,30", v));
    const std::u16string shown = FormatDateTimeStr(v);
    EXPECT_EQ(shown, u"2013-01-01 01:01:01 +05:30");
    XMP_DateTime again;
    ASSERT_TRUE(ParseDateTimeStr(shown, again));
    EXPECT_EQ(again, v);
}

#include <kivmetadataui/DateTimeString.h>

#include <kivmetadata/DateTime.h>

#include <gtest/gtest.h>

using kivmetadata::XMP_DateTime;
using kivmetadataui::FormatDateTimeStr;
using kivmetadataui::ParseDateTimeStr;

TEST(DateTimeStringTest, AcceptsTheLooseFormsAndRefusesEverythingElse)
{
    struct Case {
        std::u16string text;
        bool valid;
    };
    const Case cases[] = {
        {u"2013-12", true},    // dates
        {u"0034-08-31", true}, // 31 days in August
        {u"   2013/04/30   ", true},
        {u"2400-02-29", true}, // leap years
        {u"2012/02/29", true},
        {u"2013/01/01T  23 ", true}, // the clock
        {u"2013/01/01 24;00", true},
        {u"2013/01/01 00,00", true},
        {u"2013/01/01T 23;59;59.12345678 Z", true}, // fraction
        {u"2013/01/01 00:00:00+01", true},          // zones
        {u"2013-01-01 01:01:01 +05,30", true},
        {u"2013/01/01 00:22:01.1 +23:59", true},
        {u"", false}, // length
        {u"12345", false},
        {u"AAAA", false},    // year
        {u"2013:12", false}, // month
        {u"2013/13", false},
        {u"2013/00", false},
        {u"2013//01", false},
        {u"2013-01/01", false}, // day
        {u"2013-01-32", false},
        {u"2100-04-00", false},
        {u"2100-04-31", false},
        {u"2013-02-29", false},
        {u"2100-02-29", false},
        {u"2012-02-30", false},
        {u"2013-01-011", false}, // clock
        {u"2013-01-01T", false},
        {u"2013-01-01 1:", false},
        {u"2013-01-01 01 01 01", false},
        {u"2013-01-01 12:59;59", false}, // both separators must be the same
        {u"9999-12-31 00;;;;00", false},
        {u"2013/01/01 25", false},
        {u"2013-01-01 24:01:01", false},
        {u"2013-01-01 24:00:01", false},
        {u"2013-01-01 22:60:01", false},
        {u"2013-01-01 00:01:60", false},
        {u"2013-01-01 01:01:01.", false}, // fraction
        {u"2013-01-01 01:01:01.0000000001", false},
        {u"2013-01-01 01:01:01.1a", false},
        {u"2013-01-01 01:01:01 +05$30", false}, // zone
        {u"2013-01-01 01;01;01 +24:30", false},
        {u"1807-08-31 02:02+XXXXX", false},
        {u"2013-01-01T01:01:01.000000001Z +05:30", false},
        {u"2013-01-01 01:01:01 GMT", false},
    };
    for (Case const &c : cases) {
        XMP_DateTime v;
        EXPECT_EQ(ParseDateTimeStr(c.text, v), c.valid) << ::testing::PrintToString(c.text);
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
        ASSERT_TRUE(ParseDateTimeStr(text, v)) << ::testing::PrintToString(text);
        EXPECT_EQ(v, expected) << ::testing::PrintToString(text);
    }
}

TEST(DateTimeStringTest, IsoConversion)
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
}

// The shown form: ISO with a blank for the 'T' and before a zone east or
// west of UTC; what is shown parses back to the same record.
TEST(DateTimeStringTest, DisplayFormParsesBack)
{
    const std::pair<XMP_DateTime, std::u16string> cases[] = {
        {XMP_DateTime{}, u""},
        {{2013, 1, 1, 12, 0, 0, true, true, true, 1, 5, 30, 0}, u"2013-01-01 12:00 +05:30"},
        {{2013, 1, 1, 1, 1, 1, true, true, true, -1, 5, 0, 0}, u"2013-01-01 01:01:01 -05:00"},
        {{2013, 1, 1, 12, 0, 0, true, true, true, 0, 0, 0, 0}, u"2013-01-01 12:00Z"}, // UTC: no blank
    };
    for (auto const &[record, text] : cases) {
        EXPECT_EQ(FormatDateTimeStr(record), text);
        if (record.hasDate) {
            XMP_DateTime back;
            ASSERT_TRUE(ParseDateTimeStr(text, back)) << ::testing::PrintToString(text);
            EXPECT_EQ(back, record) << ::testing::PrintToString(text);
        }
    }
}

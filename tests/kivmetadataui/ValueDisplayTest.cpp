// Values as people read them: the read forms of stored texts, which
// properties get which form, and that only read-only controls show them.
#include "BindControl_p.h"
#include "BindingTestSupport.h"
#include "ValueDisplay_p.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

constexpr char kExif[] = "http://ns.adobe.com/exif/1.0/";
constexpr char kAux[] = "http://ns.adobe.com/exif/1.0/aux/";
constexpr char kXmp[] = "http://ns.adobe.com/xap/1.0/";
constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";

using ValueDisplayTest = kivtest::SchemaTest;

// Each property's stored text in the form its name, or else its type, calls
// for; what the form cannot read is shown as stored.
TEST_F(ValueDisplayTest, ShowsEachPropertyInItsFormOrAsStored)
{
    struct Case {
        char const *ns;
        char const *name;
        char const *stored;
        std::optional<std::u16string> shown; // empty: shown as stored
    };
    const Case cases[] = {
        {kExif, "FNumber", "28/10", u"f/2.8"}, // by name before its type (rational)
        {kExif, "FNumber", "0/0", std::nullopt},
        {kExif, "FNumber", "-28/10", std::nullopt},
        {kExif, "FNumber", "28", std::nullopt},
        {kExif, "FNumber", "2.8/1", std::nullopt},
        {kExif, "FNumber", "99999999999999999999/1", std::nullopt},
        {kExif, "FNumber", "9000000000000000000/1", std::nullopt},
        {kExif, "FocalLength", "350/10", u"35 mm"},
        {kExif, "FocalLength", " 57/10 ", u"5.7 mm"},
        {kExif, "ExposureTime", "1/125", u"1/125 s"},
        {kExif, "ExposureTime", "2/1", u"2 s"},
        {kExif, "ExposureTime", "5/10", u"1/2 s"},
        {kExif, "ExposureTime", "3/10", u"0.3 s"},
        {kExif, "ExposureTime", "0/1", std::nullopt},
        {kExif, "ApertureValue", "297/100", u"f/2.8"},
        {kExif, "ApertureValue", "1000/1", std::nullopt},
        {kExif, "ShutterSpeedValue", "6965784/1000000", u"1/125 s"},
        {kAux, "FlashCompensation", "-1/3", u"-1/3 EV"},
        {kExif, "ExposureBiasValue", "4/3", u"+1 1/3 EV"},
        {kExif, "ExposureBiasValue", "7/10", u"+0.7 EV"},
        {kExif, "ExposureBiasValue", "0/1", u"0 EV"},
        {kAux, "ApproximateFocusDistance", "1234/10", u"123.4 m"},
        {kExif, "GPSAltitude", "-5/1", u"-5 m"},
        {kExif, "GPSImgDirection", "2705/10", u"270.5°"},
        {kExif, "CompressedBitsPerPixel", "1/3", u"0.333"}, // by type: rational
        {kExif, "CompressedBitsPerPixel", "72/1", u"72"},
        {kExif, "CompressedBitsPerPixel", "-0/5", u"0"},
        {kExif, "GPSLatitude", "48,51.3N", u"48° 51.3′ N"}, // by type: GPS coordinate
        {kExif, "GPSLatitude", "2,17,40.5E", u"2° 17′ 40.5″ E"},
        {kExif, "GPSLatitude", "48,61.3N", std::nullopt},
        {kExif, "GPSLatitude", "95,1.0N", std::nullopt},
        {kExif, "GPSLatitude", "170,1.0W", u"170° 1′ W"},
        {kExif, "GPSLatitude", "48,51.3X", std::nullopt},
        {kExif, "GPSLatitude", "-48,51.3N", std::nullopt},
        {kExif, "GPSLatitude", "48,-1N", std::nullopt},
        {kExif, "GPSLatitude", "48N", std::nullopt},
        {kExif, "GPSLatitude", "2,17.5,40E", std::nullopt},
        {kXmp, "CreateDate", "2026-11-23T20:13:41+01:00", u"2026-11-23 20:13:41 +01:00"}, // by type: date
        {kXmp, "CreateDate", "yesterday", std::nullopt},
        {kExif, "FocalLengthIn35mmFilm", "28/10", std::nullopt}, // names match whole
        {kDc, "title", "28/10", std::nullopt},
    };
    for (Case const &c : cases) {
        const auto definition =
            kivmetadata::PathEntryDefinition(kivmetadata::PathForSchemaNameAndPropertyName(c.ns, c.name));
        ASSERT_TRUE(definition) << c.name;
        EXPECT_EQ(kivmetadataui::FormatForDisplay(kivmetadataui::DisplayFormOf(*definition), c.stored), c.shown)
            << c.name << ", stored \"" << c.stored << '"';
    }
}

// Read-only controls show the read form with the stored text in their
// tooltip; an editable control keeps the stored text, so nothing formatted
// can be written back.
TEST_F(ValueDisplayTest, OnlyReadOnlyControlsShowTheReadForm)
{
    auto provider = kivmetadata::MemoryMetaDataProvider::FromPacket(kivtest::Packet(
        R"(<exif:FNumber>28/10</exif:FNumber><exif:GPSLatitude>48,51.3N</exif:GPSLatitude>)"
        R"(<exif:GPSTimeStamp>2026-11-23T20:13:41+02:00</exif:GPSTimeStamp><exif:ExposureTime>1/0</exif:ExposureTime>)"));
    ASSERT_TRUE(provider);
    struct Case {
        char const *name;
        bool readOnly;
        bool forcedWritable;
        std::u16string shown;
        bool storedInToolTip;
    };
    const Case cases[] = {
        {"FNumber", false, false, u"f/2.8", true}, // rationals are never written
        {"GPSLatitude", true, false, u"48° 51.3′ N", true},
        {"GPSTimeStamp", true, false, u"2026-11-23 20:13:41 +02:00", true},
        {"ExposureTime", false, false, u"1/0", false},
        {"FNumber", false, true, u"28/10", false},
        {"GPSLatitude", false, false, u"48,51.3N", false},
    };
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView());
    for (Case const &c : cases) {
        kivmetadata::SetAllMetadataForcedWritable(c.forcedWritable);
        const kivmetadata::Value value{false, kivmetadata::PathForSchemaNameAndPropertyName(kExif, c.name), provider};
        auto control = kivmetadataui::ControlFactory(value, parent, c.readOnly, nullptr, nullptr);
        ASSERT_TRUE(control) << c.name;
        auto *view = dynamic_cast<kivui::UI_ControlView *>(control->GetView().get());
        ASSERT_TRUE(view);
        std::u16string shown;
        if (auto *text = dynamic_cast<kivui::UI_StaticText *>(view))
            shown = text->GetText();
        else if (auto *edit = dynamic_cast<kivui::UI_TextEdit *>(view))
            shown = edit->GetValue();
        EXPECT_EQ(shown, c.shown) << c.name;
        const bool stored = view->GetToolTip().find(u"Stored as: ") != std::u16string::npos;
        EXPECT_EQ(stored, c.storedInToolTip) << c.name;
        // Showing again keeps one line of it.
        kivmetadataui::RefreshControl(value, control, true);
        const std::u16string tip = view->GetToolTip();
        EXPECT_EQ(tip.find(u"Stored as: "), tip.rfind(u"Stored as: ")) << c.name;
    }
}

// The binding does not show its own writes again, so an edit must bring the
// stored text in the tooltip up to date itself.
TEST_F(ValueDisplayTest, AnEditedDateNamesWhatIsStoredNow)
{
    auto provider = kivmetadata::MemoryMetaDataProvider::FromPacket(
        kivtest::Packet(R"(<exif:DateTimeOriginal>2026-11-23T20:13:41+01:00</exif:DateTimeOriginal>)"));
    ASSERT_TRUE(provider);
    const kivmetadata::Value value{false, kivmetadata::PathForSchemaNameAndPropertyName(kExif, "DateTimeOriginal"),
                                   provider};
    kivcore::utility::IntrusivePtr<kivmetadataui::UI_DateTextEdit> date(new kivmetadataui::UI_DateTextEdit());
    kivmetadataui::UpdateControl(value, date);
    EXPECT_EQ(date->GetValue(), u"2026-11-23 20:13:41 +01:00");
    EXPECT_EQ(date->GetToolTip(), u"Stored as: 2026-11-23T20:13:41+01:00");

    date->SetValue(u"2026-12-01 10:00");
    kivmetadataui::UpdateValue(value, date);
    EXPECT_EQ(date->GetToolTip(), u"Stored as: 2026-12-01T10:00");
    date->SetValue(u"2026");
    kivmetadataui::UpdateValue(value, date);
    EXPECT_EQ(date->GetToolTip(), u"") << "shown as stored";
}

} // namespace

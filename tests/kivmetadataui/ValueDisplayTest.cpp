// Values as people read them: the read forms of stored texts, which
// properties get which form, and that only read-only controls show them.
#include "BindControl_p.h"
#include "BindingTestSupport.h"
#include "ValueDisplay_p.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/XMPMeta.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using kivmetadataui::DisplayForm;

constexpr char kExif[] = "http://ns.adobe.com/exif/1.0/";
constexpr char kAux[] = "http://ns.adobe.com/exif/1.0/aux/";
constexpr char kXmp[] = "http://ns.adobe.com/xap/1.0/";
constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";

TEST(ValueDisplayTest, ShowsEachFormAndLeavesWhatItCannotReadAsStored)
{
    struct Case {
        DisplayForm form;
        char const *stored;
        std::optional<std::u16string> shown; // empty: shown as stored
    };
    const Case cases[] = {
        {DisplayForm::kFNumber, "28/10", u"f/2.8"},
        {DisplayForm::kFNumber, "8/1", u"f/8"},
        {DisplayForm::kFNumber, "0/0", std::nullopt},
        {DisplayForm::kFNumber, "-28/10", std::nullopt},
        {DisplayForm::kFNumber, "28/", std::nullopt},
        {DisplayForm::kFNumber, "28", std::nullopt},
        {DisplayForm::kFNumber, "2.8/1", std::nullopt},
        {DisplayForm::kFNumber, "99999999999999999999/1", std::nullopt},
        {DisplayForm::kFNumber, "9000000000000000000/1", std::nullopt},
        {DisplayForm::kFocalLength, "350/10", u"35 mm"},
        {DisplayForm::kFocalLength, " 57/10 ", u"5.7 mm"},
        {DisplayForm::kExposureTime, "1/125", u"1/125 s"},
        {DisplayForm::kExposureTime, "10/1250", u"1/125 s"},
        {DisplayForm::kExposureTime, "2/1", u"2 s"},
        {DisplayForm::kExposureTime, "5/10", u"1/2 s"},
        {DisplayForm::kExposureTime, "3/10", u"0.3 s"},
        {DisplayForm::kExposureTime, "0/1", std::nullopt},
        {DisplayForm::kExposureTime, "1/-125", std::nullopt},
        {DisplayForm::kApexAperture, "297/100", u"f/2.8"},
        {DisplayForm::kApexAperture, "1000/1", std::nullopt},
        {DisplayForm::kApexShutterSpeed, "6965784/1000000", u"1/125 s"},
        {DisplayForm::kExposureBias, "-1/3", u"-1/3 EV"},
        {DisplayForm::kExposureBias, "4/3", u"+1 1/3 EV"},
        {DisplayForm::kExposureBias, "7/10", u"+0.7 EV"},
        {DisplayForm::kExposureBias, "0/1", u"0 EV"},
        {DisplayForm::kMetres, "1234/10", u"123.4 m"},
        {DisplayForm::kMetres, "-5/1", u"-5 m"},
        {DisplayForm::kDegrees, "2705/10", u"270.5°"},
        {DisplayForm::kNumber, "1/3", u"0.333"},
        {DisplayForm::kNumber, "72/1", u"72"},
        {DisplayForm::kNumber, "-1/2", u"-0.5"},
        {DisplayForm::kNumber, "-0/5", u"0"},
        {DisplayForm::kGPSCoordinate, "48,51.3N", u"48° 51.3′ N"},
        {DisplayForm::kGPSCoordinate, "2,17,40.5E", u"2° 17′ 40.5″ E"},
        {DisplayForm::kGPSCoordinate, "48,61.3N", std::nullopt},
        {DisplayForm::kGPSCoordinate, "95,1.0N", std::nullopt},
        {DisplayForm::kGPSCoordinate, "170,1.0W", u"170° 1′ W"},
        {DisplayForm::kGPSCoordinate, "48,51.3X", std::nullopt},
        {DisplayForm::kGPSCoordinate, "-48,51.3N", std::nullopt},
        {DisplayForm::kGPSCoordinate, "48,-1N", std::nullopt},
        {DisplayForm::kGPSCoordinate, "48N", std::nullopt},
        {DisplayForm::kGPSCoordinate, "2,17.5,40E", std::nullopt},
        {DisplayForm::kGPSCoordinate, "", std::nullopt},
        {DisplayForm::kDate, "2026-11-23T20:13:41+01:00", u"2026-11-23 20:13:41 +01:00"},
        {DisplayForm::kDate, "yesterday", std::nullopt},
        {DisplayForm::kRaw, "28/10", std::nullopt},
    };
    for (Case const &c : cases) {
        EXPECT_EQ(kivmetadataui::FormatForDisplay(c.form, c.stored), c.shown)
            << "form " << int(c.form) << ", stored \"" << c.stored << '"';
    }
}

TEST(ValueDisplayTest, PicksTheFormByPropertyThenByTypeId)
{
    kivmetadataui::Initialize();
    struct Case {
        char const *ns;
        char const *name;
        DisplayForm form;
    };
    const Case cases[] = {
        {kExif, "FNumber", DisplayForm::kFNumber},
        {kExif, "FocalLength", DisplayForm::kFocalLength},
        {kExif, "ExposureTime", DisplayForm::kExposureTime},
        {kExif, "ShutterSpeedValue", DisplayForm::kApexShutterSpeed},
        {kAux, "FlashCompensation", DisplayForm::kExposureBias},
        {kAux, "ApproximateFocusDistance", DisplayForm::kMetres},
        {kExif, "GPSLatitude", DisplayForm::kGPSCoordinate},
        {kExif, "CompressedBitsPerPixel", DisplayForm::kNumber},
        {kXmp, "CreateDate", DisplayForm::kDate},
        {kExif, "FocalLengthIn35mmFilm", DisplayForm::kRaw},
        {kDc, "title", DisplayForm::kRaw},
    };
    for (Case const &c : cases) {
        const auto definition =
            kivmetadata::PathEntryDefinition(kivmetadata::PathForSchemaNameAndPropertyName(c.ns, c.name));
        ASSERT_TRUE(definition) << c.name;
        EXPECT_EQ(kivmetadataui::DisplayFormOf(*definition), c.form) << c.name;
    }
    kivmetadataui::Terminate();
}

// Read-only controls show the read form with the stored text in their
// tooltip; an editable control keeps the stored text, so nothing formatted
// can be written back.
TEST(ValueDisplayTest, OnlyReadOnlyControlsShowTheReadForm)
{
    kivmetadataui::Initialize();
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
    kivmetadata::SetAllMetadataForcedWritable(false);
    kivmetadataui::Terminate();
}

// The binding does not show its own writes again, so an edit must bring the
// stored text in the tooltip up to date itself.
TEST(ValueDisplayTest, AnEditedDateNamesWhatIsStoredNow)
{
    kivmetadataui::Initialize();
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
    kivmetadataui::Terminate();
}

} // namespace

// The value binding: what each control shows, what each control writes back
// (and records), and when a control is editable and shown.
#include "BindingTestSupport.h"
#include "ControlFactory_p.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivmetadata/MRULists.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using kivcore::utility::IntrusivePtr;
using kivmetadata::Value;
using kivmetadataui::ControlStatus;
using kivtest::RecordingProvider;
using kivtest::TestPath;

template <typename T> IntrusivePtr<T> Make()
{
    return IntrusivePtr<T>(new T());
}

class BindControlTest : public kivtest::SchemaTest {
protected:
    void SetUp() override
    {
        SchemaTest::SetUp();
        mProvider = RecordingProvider::Make(
            R"(<kbt:count>7</kbt:count><kbt:note>old</kbt:note><kbt:flag>True</kbt:flag><kbt:stars>4</kbt:stars>)"
            R"(<kbt:level>1</kbt:level><kbt:ratio>0.5</kbt:ratio><kbt:speed>1/3</kbt:speed><kbt:home>http://a.example/</kbt:home>)");
    }

    // Expects exactly one recorded change, of `name`.
    void ExpectChanged(std::string const &name)
    {
        EXPECT_EQ(mProvider->mChanges, std::set<kivmetadata::Path>{TestPath(name)});
        mProvider->mChanges.clear();
    }
};

TEST_F(BindControlTest, ControlStatusFollowsTheReasonToDisable)
{
    auto refusing = RecordingProvider::Make();
    refusing->mAcceptsWriting = false;
    struct Case {
        char const *what;
        Value value;
        ControlStatus none, displayFalse, displayTrue;
    };
    const Case cases[] = {
        {"editable", ValueOf("note"), kivmetadataui::kControlStatus_Editable, kivmetadataui::kControlStatus_Editable,
         kivmetadataui::kControlStatus_ReadOnly},
        {"not editable", Value{true, TestPath("note"), mProvider}, kivmetadataui::kControlStatus_Disabled,
         kivmetadataui::kControlStatus_ReadOnly, kivmetadataui::kControlStatus_ReadOnly},
        {"refused by provider", Value{false, TestPath("note"), refusing}, kivmetadataui::kControlStatus_Disabled,
         kivmetadataui::kControlStatus_ReadOnly, kivmetadataui::kControlStatus_ReadOnly},
        {"rational", ValueOf("speed"), kivmetadataui::kControlStatus_Disabled, kivmetadataui::kControlStatus_Disabled,
         kivmetadataui::kControlStatus_Disabled},
        {"no provider", Value{false, TestPath("note"), nullptr}, kivmetadataui::kControlStatus_Disabled,
         kivmetadataui::kControlStatus_Disabled, kivmetadataui::kControlStatus_Disabled},
    };
    for (auto const &c : cases) {
        EXPECT_EQ(kivmetadataui::QueryControlStatus(c.value), c.none) << c.what;
        EXPECT_EQ(kivmetadataui::QueryControlStatus(c.value, false), c.displayFalse) << c.what;
        EXPECT_EQ(kivmetadataui::QueryControlStatus(c.value, true), c.displayTrue) << c.what;
    }
    kivmetadata::SetAllMetadataForcedWritable(true);
    for (auto const &c : cases) {
        EXPECT_EQ(kivmetadataui::QueryControlStatus(c.value), kivmetadataui::kControlStatus_Editable) << c.what;
        EXPECT_EQ(kivmetadataui::QueryControlStatus(c.value, true), kivmetadataui::kControlStatus_Editable) << c.what;
    }
}

TEST_F(BindControlTest, VisibilityNeedsAValueOrAProviderThatReadsIt)
{
    const Value orphan{false, TestPath("note"), nullptr};
    EXPECT_TRUE(kivmetadataui::QueryVisibilityStatus(orphan, kivmetadata::kGetValueResult_OneValue));
    EXPECT_TRUE(kivmetadataui::QueryVisibilityStatus(orphan, kivmetadata::kGetValueResult_SeveralValues));
    EXPECT_FALSE(kivmetadataui::QueryVisibilityStatus(orphan, kivmetadata::kGetValueResult_Absent));
    EXPECT_TRUE(kivmetadataui::QueryVisibilityStatus(ValueOf("note"), kivmetadata::kGetValueResult_Absent));
    mProvider->mAcceptsReading = false;
    EXPECT_FALSE(kivmetadataui::QueryVisibilityStatus(ValueOf("note"), kivmetadata::kGetValueResult_Unreadable));
    mProvider->mAcceptsWriting = false; // writing is not what visibility asks
    mProvider->mAcceptsReading = true;
    EXPECT_TRUE(kivmetadataui::QueryVisibilityStatus(ValueOf("note"), kivmetadata::kGetValueResult_Unreadable));
}

TEST_F(BindControlTest, TextEditsWriteTextAndDeleteWhenEmptyOrUnknown)
{
    auto edit = Make<kivui::UI_TextEdit>();
    edit->SetValue(u"Gr\u00fc\u00dfe \u2603", false);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    EXPECT_EQ(mProvider->Text("note"), "Gr\xc3\xbc\xc3\x9f"
                                       "e \xe2\x98\x83");
    ExpectChanged("note");

    edit->SetValue(u"", false);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    EXPECT_EQ(mProvider->Text("note"), "<absent>") << "an empty field removes the property";
    ExpectChanged("note");

    // Deleting what is not there changes nothing, and nothing is recorded.
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    EXPECT_TRUE(mProvider->mChanges.empty());

    edit->SetValue(u"kept", false);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    edit->SetValueUnknown(true);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    EXPECT_EQ(mProvider->Text("note"), "<absent>");
}

TEST_F(BindControlTest, CheckboxWritesBooleansAndDeletesWhenMixed)
{
    auto box = Make<kivui::UI_Checkbox>();
    box->SetValue(kivui::UI_Checkbox::kUnchecked);
    kivmetadataui::UpdateValue(ValueOf("flag"), box);
    EXPECT_EQ(mProvider->Text("flag"), "False");
    ExpectChanged("flag");
    box->SetValue(kivui::UI_Checkbox::kChecked);
    kivmetadataui::UpdateValue(ValueOf("flag"), box);
    EXPECT_EQ(mProvider->Text("flag"), "True");
    box->SetValue(kivui::UI_Checkbox::kMixed);
    kivmetadataui::UpdateValue(ValueOf("flag"), box);
    EXPECT_EQ(mProvider->Text("flag"), "<absent>");

    // Shown: absent is the mixed state, a value its state.
    kivmetadataui::UpdateControl(ValueOf("flag"), box);
    EXPECT_EQ(box->GetValue(), kivui::UI_Checkbox::kMixed);
    mProvider->GetMeta()->SetProperty(kivtest::kTestNS, TestPath("flag").mPath, "True");
    kivmetadataui::UpdateControl(ValueOf("flag"), box);
    EXPECT_EQ(box->GetValue(), kivui::UI_Checkbox::kChecked);
}

TEST_F(BindControlTest, NumbersAreTruncatedForIntegersAndDeletedWhenEmpty)
{
    auto number = Make<kivui::UI_HotTextNumber>();
    number->SetDecimalPlaces(3);
    number->SetAllowEmpty(true);
    struct Case {
        char const *name;
        double shown;
        char const *written;
    };
    for (Case const &c : {Case{"count", 3.9, "3"}, Case{"count", 0.99, "0"}, Case{"ratio", 2.5, "2.5"},
                          Case{"ratio", -0.25, "-0.25"}}) {
        number->SetValue(c.shown);
        kivmetadataui::UpdateValue(ValueOf(c.name), number);
        EXPECT_EQ(mProvider->Text(c.name), c.written) << c.name << " " << c.shown;
        ExpectChanged(c.name);
    }
    number->SetValue(std::numeric_limits<double>::quiet_NaN());
    kivmetadataui::UpdateValue(ValueOf("count"), number);
    EXPECT_EQ(mProvider->Text("count"), "<absent>");
    ExpectChanged("count");

    // A value the definition refuses (above its maximum) is not recorded.
    number->SetValue(500);
    kivmetadataui::UpdateValue(ValueOf("count"), number);
    EXPECT_EQ(mProvider->Text("count"), "<absent>");
    EXPECT_TRUE(mProvider->mChanges.empty());
}

TEST_F(BindControlTest, StarRatingWritesWholeStarsAndZeroDeletes)
{
    kivtest::AssertRecorder asserts;
    auto rating = Make<kivui::UI_StarRating>();
    rating->SetValue(3);
    kivmetadataui::UpdateValue(ValueOf("stars"), rating);
    EXPECT_EQ(mProvider->Text("stars"), "3") << "the shortest text, no \"3.0\"";
    ExpectChanged("stars");
    EXPECT_TRUE(asserts.Asserts().empty());

    rating->SetValue(0);
    kivmetadataui::UpdateValue(ValueOf("stars"), rating);
    EXPECT_EQ(mProvider->Text("stars"), "<absent>") << "no stars removes the property";
    ExpectChanged("stars");

    rating->SetValue(2.5);
    kivmetadataui::UpdateValue(ValueOf("stars"), rating);
    EXPECT_TRUE(asserts.FiredMessage("Breaking backward compatibility with GX6"));
    EXPECT_EQ(asserts.Take(),
              std::vector<std::string>{
                  "src/BindControl|kivmetadataui::UpdateValue|(value == static_cast<std::int64_t>(value))"});
    EXPECT_EQ(mProvider->Text("stars"), "2.5");
}

TEST_F(BindControlTest, PopupWritesTheStoredChoice)
{
    kivtest::AssertRecorder asserts;
    auto popup = Make<kivui::UI_Popup>();
    kivmetadataui::FillPopup(*popup, {{"1", "$$$/kivtest/level/1=Low"}, {"2", "$$$/kivtest/level/2=High"}});
    kivmetadataui::UpdateControl(ValueOf("level"), popup);
    EXPECT_EQ(popup->GetValue(), 0);
    popup->SetValue(1);
    kivmetadataui::UpdateValue(ValueOf("level"), popup);
    EXPECT_EQ(mProvider->Text("level"), "2");
    ExpectChanged("level");
    EXPECT_TRUE(asserts.Asserts().empty());

    // A raw value that matches no choice selects nothing.
    mProvider->GetMeta()->SetProperty(kivtest::kTestNS, TestPath("level").mPath, "9");
    kivmetadataui::UpdateControl(ValueOf("level"), popup);
    EXPECT_EQ(popup->GetValue(), -1);

    auto bare = Make<kivui::UI_Popup>();
    bare->AddItem(u"Low");
    bare->SetValue(0);
    kivmetadataui::UpdateValue(ValueOf("level"), bare);
    EXPECT_TRUE(asserts.FiredMessage("UpdateValue:  can't retrieve user data from UI_Popup"));
    kivmetadataui::UpdateControl(ValueOf("level"), bare);
    EXPECT_TRUE(asserts.FiredMessage("UpdateControl: can't retrieve user data from UI_Popup"));
    EXPECT_EQ(bare->GetValue(), 0) << "left unchanged";
    EXPECT_EQ(mProvider->Text("level"), "9");
}

TEST_F(BindControlTest, StaticTextShowsChoiceDisplayAndNeverWrites)
{
    auto text = Make<kivui::UI_StaticText>();
    mProvider->GetMeta()->SetProperty(kivtest::kTestNS, TestPath("level").mPath, "2");
    kivmetadataui::UpdateControl(ValueOf("level"), text);
    EXPECT_EQ(text->GetText(), u"High");
    EXPECT_EQ(text->GetTextMode(), 2);
    kivmetadataui::UpdateControl(ValueOf("home"), text);
    EXPECT_EQ(text->GetText(), u"http://a.example/");
    EXPECT_EQ(text->GetTextMode(), 3) << "addresses are shown selectable";

    const std::string before = mProvider->GetMeta()->Serialize();
    kivmetadataui::UpdateValue(ValueOf("home"), text);
    EXPECT_EQ(mProvider->GetMeta()->Serialize(), before);
    EXPECT_TRUE(mProvider->mChanges.empty());
}

TEST_F(BindControlTest, AutoCompleteRemembersWhatWasTyped)
{
    kivmetadata::ClearMRULists();
    auto edit = Make<kivui::UI_AutoCompleteTextEdit>();
    edit->SetValue(u"first", false);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    edit->SetValue(u"second", false);
    kivmetadataui::UpdateValue(ValueOf("note"), edit);
    const auto mru = kivmetadata::GetMRUList(kivmetadataui::MRUKeyForPath(TestPath("note")));
    ASSERT_GE(mru.size(), 2u);
    EXPECT_EQ(mru[0], u"second");
    EXPECT_EQ(mru[1], u"first");
    EXPECT_EQ(edit->GetEntryList(), mru) << "the next completion offers it";

    // An array's items are remembered one by one.
    edit->SetValue(u"red; green", false);
    kivmetadataui::UpdateValue(ValueOf("tags"), edit);
    const auto tags = kivmetadata::GetMRUList(kivmetadataui::MRUKeyForPath(TestPath("tags")));
    EXPECT_NE(std::find(tags.begin(), tags.end(), u"red"), tags.end());
    EXPECT_NE(std::find(tags.begin(), tags.end(), u"green"), tags.end());
}

TEST_F(BindControlTest, DateEditWritesIsoText)
{
    auto date = Make<kivmetadataui::UI_DateTextEdit>();
    date->SetValue(u"2013/01/01 12:00:30 +05:30");
    kivmetadataui::UpdateValue(ValueOf("when"), date);
    EXPECT_EQ(mProvider->Text("when"), "2013-01-01T12:00:30+05:30");
    ExpectChanged("when");

    kivmetadataui::UpdateControl(ValueOf("when"), date);
    EXPECT_EQ(date->GetValue(), u"2013-01-01 12:00:30 +05:30");
}

TEST_F(BindControlTest, SeveralAssetsShowMultipleValues)
{
    auto a = RecordingProvider::Make(R"(<kbt:note>one</kbt:note><kbt:level>1</kbt:level>)"
                                     R"(<dc:subject><rdf:Bag><rdf:li>x</rdf:li></rdf:Bag></dc:subject>)");
    auto b = RecordingProvider::Make(R"(<kbt:note>two</kbt:note><kbt:level>1</kbt:level>)"
                                     R"(<dc:subject><rdf:Bag><rdf:li>y</rdf:li></rdf:Bag></dc:subject>)");
    auto multi = std::make_shared<kivmetadata::MultiMetaDataProvider>(
        std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>>{a, b});

    auto edit = Make<kivui::UI_TextEdit>();
    kivmetadataui::UpdateControl(Value{false, TestPath("note"), multi}, edit);
    EXPECT_TRUE(edit->IsValueUnknown());
    EXPECT_EQ(edit->GetValue(), u"");
    EXPECT_EQ(edit->GetUnknownStateText(), u"<Multiple Values>");
    EXPECT_TRUE(edit->UI_IsShown());

    auto same = Make<kivui::UI_StaticText>();
    kivmetadataui::UpdateControl(Value{false, TestPath("level"), multi}, same);
    EXPECT_EQ(same->GetText(), u"Low") << "equal values are one value";

    auto differ = Make<kivui::UI_StaticText>();
    kivmetadataui::UpdateControl(Value{false, TestPath("note"), multi}, differ);
    EXPECT_EQ(differ->GetText(), u"<Multiple Values>");

    // Keywords show what the assets have together instead.
    auto subject = Make<kivui::UI_TextEdit>();
    kivmetadataui::UpdateControl(
        Value{false, kivmetadata::PathForSchemaNameAndPropertyName("http://purl.org/dc/elements/1.1/", "subject"),
              multi},
        subject);
    EXPECT_EQ(subject->GetUnknownStateText(), u"x; y");
}

TEST_F(BindControlTest, StatusAndVisibilityAreAppliedAfterShowing)
{
    auto edit = Make<kivui::UI_TextEdit>();
    kivmetadataui::UpdateControl(ValueOf("note"), edit);
    EXPECT_EQ(edit->GetValue(), u"old");
    EXPECT_FALSE(edit->IsDisabled());
    EXPECT_TRUE(edit->UI_IsShown());

    kivmetadataui::UpdateControl(Value{true, TestPath("note"), mProvider}, edit);
    EXPECT_TRUE(edit->IsDisabled());

    kivmetadata::SetAllMetadataForcedWritable(true);
    kivmetadataui::UpdateControl(Value{false, TestPath("note"), nullptr}, edit);
    EXPECT_FALSE(edit->IsDisabled()) << "forced writable leaves every control editable";
    EXPECT_FALSE(edit->UI_IsShown()) << "no provider and no value: hidden";
}

} // namespace

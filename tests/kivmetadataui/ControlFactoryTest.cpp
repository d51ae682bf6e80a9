// The control factory: which control each value gets, custom creators first,
// and a made control that stays bound to its value in both directions.
#include "BindingTestSupport.h"
#include "ControlFactory_p.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlCreator.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/MetadataProviderWrapper.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ViewItem.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_URLEdit.h>

#include <QCheckBox>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace {

using kivcore::utility::IntrusivePtr;
using kivmetadata::Value;
using kivmetadata::ViewItem;
using kivmetadataui::Control;
using kivtest::RecordingProvider;
using kivtest::TestPath;

template <typename T> T *ViewAs(std::shared_ptr<Control> const &control)
{
    return control ? dynamic_cast<T *>(control->GetView().get()) : nullptr;
}

// The kind of a control, most derived first.
std::string KindOf(std::shared_ptr<Control> const &control)
{
    if (!control) return "none";
    if (ViewAs<kivmetadataui::UI_DateTextEdit>(control)) return "date";
    if (ViewAs<kivui::UI_URLEdit>(control)) return "url";
    if (ViewAs<kivui::UI_AutoCompleteTextEdit>(control)) return "autocomplete";
    if (ViewAs<kivui::UI_DragableTextEdit>(control)) return "dragable";
    if (ViewAs<kivui::UI_StaticText>(control)) return "static";
    if (ViewAs<kivui::UI_HotTextNumber>(control)) return "number";
    if (ViewAs<kivui::UI_StarRating>(control)) return "stars";
    if (ViewAs<kivui::UI_Checkbox>(control)) return "checkbox";
    if (auto *popup = ViewAs<kivui::UI_Popup>(control)) return popup->GetPopupType() == 1 ? "editable popup" : "popup";
    return "other";
}

std::shared_ptr<ViewItem> Item(std::string const &name, std::map<std::string, std::string> attributes = {},
                               std::vector<kivmetadata::Choice> choices = {})
{
    auto item = std::make_shared<ViewItem>();
    item->mPath = TestPath(name);
    item->mAttributes = std::move(attributes);
    item->mChoices = std::move(choices);
    return item;
}

// Terminate destroys a creator a test installed.
class ControlFactoryTest : public kivtest::SchemaTest {
protected:
    void SetUp() override
    {
        SchemaTest::SetUp();
        mProvider = RecordingProvider::Make(
            R"(<kbt:note>old</kbt:note><kbt:count>7</kbt:count><kbt:level>2</kbt:level><kbt:when>2013-01-01T10:00</kbt:when>)");
    }
    std::shared_ptr<Control> Make(std::string const &name, std::shared_ptr<ViewItem> item = nullptr,
                                  bool readOnly = false)
    {
        return kivmetadataui::ControlFactory(ValueOf(name), std::move(item), mParent, readOnly, nullptr, nullptr);
    }

    IntrusivePtr<kivui::UI_SubView> mParent{new kivui::UI_SubView()};
};

TEST_F(ControlFactoryTest, ChoosesByTypeIdThenPrimitiveType)
{
    const std::map<std::string, std::string> expected{
        {"count", "number"},      {"ratio", "number"},       {"note", "autocomplete"}, {"caption", "autocomplete"},
        {"tags", "autocomplete"}, {"steps", "autocomplete"}, {"flag", "checkbox"},     {"mood", "editable popup"},
        {"level", "popup"},       {"home", "url"},           {"link", "autocomplete"}, {"stars", "stars"},
        {"when", "date"},         {"speed", "static"},
    };
    for (auto const &[name, kind] : expected)
        EXPECT_EQ(KindOf(Make(name)), kind) << name;

    auto level = Make("level");
    auto *popup = ViewAs<kivui::UI_Popup>(level);
    ASSERT_NE(popup, nullptr);
    ASSERT_EQ(popup->CountItems(), 2);
    EXPECT_EQ(popup->GetItemText(1), u"High");
    EXPECT_EQ(popup->GetValue(), 1) << "shown at once";
    EXPECT_EQ(mParent->UI_CountChildren(), static_cast<int>(expected.size()) + 1) << "each control joins the parent";

    auto count = Make("count");
    auto *number = ViewAs<kivui::UI_HotTextNumber>(count);
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(number->GetDecimalPlaces(), 0);
    EXPECT_EQ(number->GetMax(), 100.0);
    EXPECT_EQ(number->GetValue(), 7.0);
    EXPECT_EQ(ViewAs<kivui::UI_HotTextNumber>(Make("ratio"))->GetDecimalPlaces(), 2);

    EXPECT_EQ(ViewAs<kivui::UI_SubView>(Make("note"))->UI_GetNodeID(), "");
    auto note = Make("note");
    EXPECT_EQ(ViewAs<kivui::UI_ControlView>(note)->GetToolTip(), u"Note :: What to remember");
}

TEST_F(ControlFactoryTest, ViewItemAttributesComeFirst)
{
    kivtest::AssertRecorder asserts;
    auto dropdown = Make("note", Item("note", {{"dropdown", "true"}}, {{"a", "A"}, {"b", "B"}}));
    EXPECT_EQ(KindOf(dropdown), "popup");
    EXPECT_EQ(ViewAs<kivui::UI_Popup>(dropdown)->CountItems(), 2);
    EXPECT_EQ(KindOf(Make("note", Item("note", {{"dropdown", "true"}, {"openChoice", "true"}}, {{"a", "A"}}))),
              "editable popup");
    EXPECT_TRUE(asserts.Asserts().empty());

    Make("note", Item("note", {{"dropdown", "true"}}));
    EXPECT_TRUE(asserts.Fired("!viewItem->mChoices.empty()", "kivmetadataui::ControlFactory"));
    asserts.Clear();

    auto stars = Make("ratio", Item("ratio", {{"rating", "true"}, {"size", "20"}}));
    ASSERT_EQ(KindOf(stars), "stars");
    EXPECT_EQ(ViewAs<kivui::UI_StarRating>(stars)->GetStarSize(), 20.0f);
    EXPECT_TRUE(asserts.Asserts().empty());

    // A rating on an integer property: asserted, and no rating control.
    EXPECT_EQ(KindOf(Make("count", Item("count", {{"rating", "true"}}))), "number");
    EXPECT_TRUE(asserts.Fired("*primitiveType == kivmetadata::kPrimitiveType_Real", "kivmetadataui::ControlFactory"));

    auto lines = Make("note", Item("note", {{"multiLines", "4"}}));
    ASSERT_EQ(KindOf(lines), "dragable");
    EXPECT_EQ(ViewAs<kivui::UI_DragableTextEdit>(lines)->GetLineCount(), 4);
    EXPECT_EQ(KindOf(Make("note", Item("note", {{"multiLines", "many"}}))), "autocomplete");
}

TEST_F(ControlFactoryTest, ReadOnlyGivesStaticTextUnlessForcedWritable)
{
    EXPECT_EQ(KindOf(Make("note", nullptr, true)), "static");
    EXPECT_EQ(KindOf(Make("note", Item("note", {{"readOnly", "true"}}))), "static");
    EXPECT_EQ(KindOf(kivmetadataui::ControlFactory(Value{true, TestPath("note"), mProvider}, mParent, false, nullptr,
                                                   nullptr)),
              "static");
    auto level = Make("level", nullptr, true);
    ASSERT_EQ(KindOf(level), "static");
    EXPECT_EQ(ViewAs<kivui::UI_StaticText>(level)->GetText(), u"High");

    kivmetadata::SetAllMetadataForcedWritable(true);
    auto forced = Make("note", nullptr, true);
    ASSERT_EQ(KindOf(forced), "autocomplete");
    EXPECT_TRUE(ViewAs<kivui::UI_TextEdit>(forced)->IsReadOnlyMode());
    EXPECT_EQ(ViewAs<kivui::UI_TextEdit>(forced)->UI_GetNodeID(), ", read_only");
    EXPECT_EQ(KindOf(Make("speed")), "autocomplete");

    auto date = Make("when", Item("when"), true);
    ASSERT_EQ(KindOf(date), "date");
    EXPECT_EQ(ViewAs<kivmetadataui::UI_DateTextEdit>(date)->UI_GetNodeID(), "metadata_view, read_only");
    EXPECT_TRUE(ViewAs<kivmetadataui::UI_DateTextEdit>(date)->IsReadOnlyMode());
    kivmetadata::SetAllMetadataForcedWritable(false);

    auto plainDate = Make("when", Item("when"));
    EXPECT_EQ(ViewAs<kivmetadataui::UI_DateTextEdit>(plainDate)->UI_GetNodeID(), "metadata_view");
    EXPECT_EQ(ViewAs<kivmetadataui::UI_DateTextEdit>(plainDate)->GetValue(), u"2013-01-01 10:00");
}

TEST_F(ControlFactoryTest, UnknownPathAssertsAndMakesNothing)
{
    kivtest::AssertRecorder asserts;
    const Value unknown{false, kivmetadata::Path{kivtest::kTestNS, "kbt:nothing"}, mProvider};
    EXPECT_EQ(kivmetadataui::InlineControlFactory(unknown, mParent), nullptr);
    EXPECT_TRUE(asserts.Fired("definition && primitiveType", "kivmetadataui::ControlFactory"));
}

TEST_F(ControlFactoryTest, CustomCreatorWinsAndEmptyResultFallsBack)
{
    std::shared_ptr<ViewItem> seenItem;
    IntrusivePtr<kivui::UI_Node> seenParent;
    IntrusivePtr<kivui::UI_SubView> customView(new kivui::UI_SubView());
    bool answer = true;
    kivmetadataui::RegisterControlCreator([&](Value const &, std::shared_ptr<ViewItem> item,
                                              IntrusivePtr<kivui::UI_Node> parent) -> std::shared_ptr<Control> {
        seenItem = item;
        seenParent = parent;
        return answer ? std::make_shared<Control>(customView, nullptr) : nullptr;
    });
    auto custom = Make("note");
    ASSERT_TRUE(custom);
    EXPECT_EQ(custom->GetView(), customView);
    ASSERT_TRUE(seenItem) << "a view item is made from the path";
    EXPECT_EQ(seenItem->mPath, TestPath("note"));
    EXPECT_EQ(seenParent.get(), mParent.get());

    // The custom factory's controls cannot be refreshed.
    kivtest::AssertRecorder asserts;
    kivmetadataui::RefreshControl(ValueOf("note"), custom, false);
    EXPECT_TRUE(asserts.FiredMessage("Custom Factory is installed.\nCan't refresh the control."));

    answer = false;
    EXPECT_EQ(KindOf(Make("note")), "autocomplete");
}

TEST_F(ControlFactoryTest, MadeControlWritesEditsAndFollowsTheProvider)
{
    int changed = 0;
    auto onChanged = std::make_shared<std::function<void(kivui::Message *)>>([&](kivui::Message *) { ++changed; });
    auto control = kivmetadataui::ControlFactory(ValueOf("note"), Item("note"), mParent, false, onChanged, nullptr);
    auto *edit = ViewAs<kivui::UI_TextEdit>(control);
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->GetValue(), u"old");
    EXPECT_TRUE(mProvider->mChanges.empty()) << "showing a value is no edit";

    edit->SetValue(u"typed", true);
    EXPECT_EQ(mProvider->Text("note"), "typed");
    EXPECT_EQ(mProvider->mChanges, std::set<kivmetadata::Path>{TestPath("note")});
    EXPECT_EQ(changed, 1);

    // A change made elsewhere is shown.
    kivtest::SetAndNotify(mProvider, TestPath("note"), "elsewhere");
    EXPECT_EQ(edit->GetValue(), u"elsewhere");

    mProvider->GetMeta()->SetProperty(kivtest::kTestNS, TestPath("note").mPath, "behind");
    kivmetadataui::RefreshControl(ValueOf("note"), control, false);
    EXPECT_EQ(edit->GetValue(), u"behind");

    // Once the control is gone, nothing reaches it or the caller any more.
    IntrusivePtr<kivui::UI_TextEdit> keep(edit);
    control.reset();
    keep->SetValue(u"after", true);
    EXPECT_EQ(mProvider->Text("note"), "behind");
    EXPECT_EQ(changed, 1);
    kivtest::SetAndNotify(mProvider, TestPath("note"), "later");
    EXPECT_EQ(keep->GetValue(), u"after");
}

TEST_F(ControlFactoryTest, ControlsOnAWrapperLeaveItUntouched)
{
    auto wrapper = std::make_shared<kivmetadataui::MetadataProviderWrapper>(mProvider);
    std::vector<std::shared_ptr<Control>> controls;
    for (char const *name : {"count", "ratio", "note", "flag", "mood", "level", "tags", "steps", "caption", "home",
                             "link", "stars", "when", "speed"})
        controls.push_back(kivmetadataui::InlineControlFactory(Value{false, TestPath(name), wrapper}, mParent));
    EXPECT_FALSE(wrapper->IsModified());

    auto *box = ViewAs<kivui::UI_Checkbox>(controls[3]);
    ASSERT_NE(box, nullptr);
    box->GetCheckBox()->click();
    EXPECT_TRUE(wrapper->IsModified());
    EXPECT_EQ(mProvider->Text("flag"), "<absent>") << "not before the commit";
    wrapper->CommitChanges();
    EXPECT_EQ(mProvider->Text("flag"), "True");
}

TEST_F(ControlFactoryTest, HelpersFollowDefinitionsAndViewItems)
{
    kivtest::AssertRecorder asserts;
    EXPECT_TRUE(kivmetadataui::IsPropertySupportedForWriting(TestPath("note")));
    EXPECT_FALSE(kivmetadataui::IsPropertySupportedForWriting(TestPath("speed")));
    EXPECT_TRUE(asserts.Asserts().empty());
    EXPECT_FALSE(kivmetadataui::IsPropertySupportedForWriting(kivmetadata::Path{kivtest::kTestNS, "kbt:nothing"}));
    EXPECT_TRUE(asserts.Fired("definition", "kivmetadataui::IsPropertySupportedForWriting"));

    EXPECT_EQ(kivmetadataui::ChoicesFromViewItem(*Item("level", {}, {{"x", "X"}})).size(), 1u)
        << "a view item's own choices replace the definition's";
    asserts.Clear();
    EXPECT_EQ(kivmetadataui::ComposeTooltip(kivmetadata::PathEntryDefinition(TestPath("count"))), u"Count");
    kivmetadataui::ComposeTooltip(nullptr);
    EXPECT_TRUE(asserts.Fired("inDefinition", "kivmetadataui::ComposeTooltip"));
}

} // namespace

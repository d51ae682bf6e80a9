// The date edit: typed dates are stored and shown normalised, a text that is
// no date is refused with the format warning, and the skins find the field.
#include "BindingTestSupport.h"

#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/ModuleInfo.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivui/SkinManager.h>

#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using kivcore::utility::IntrusivePtr;

// Records refused commits instead of showing a message box.
class RecordingDateEdit : public kivmetadataui::UI_DateTextEdit {
public:
    std::vector<std::u16string> mWarnings;

protected:
    void ShowValidationWarning(std::u16string const &inWarning) override { mWarnings.push_back(inWarning); }
};

const std::u16string kWarning =
    u"The date format is not valid. Please enter date in YYYY/MM/DD HH:MM:SS \u00b1HH:MM format.";

TEST(UI_DateTextEditTest, SetValueNormalisesDatesAndKeepsOtherText)
{
    IntrusivePtr<kivmetadataui::UI_DateTextEdit> edit(new kivmetadataui::UI_DateTextEdit());
    struct Case {
        std::u16string typed, shown;
    };
    for (Case const &c :
         {Case{u"2013/01/01 12:00:00 +05:30", u"2013-01-01 12:00 +05:30"}, Case{u"  2013/04/30  ", u"2013-04-30"},
          Case{u"2013-01-01T23;59;59.9-01", u"2013-01-01 23:59:59.9 -01:00"}}) {
        edit->SetValue(c.typed);
        EXPECT_EQ(edit->GetValue(), c.shown);
        ASSERT_TRUE(edit->GetDateTime().has_value());
        kivmetadata::XMP_DateTime parsed;
        ASSERT_TRUE(kivmetadataui::ParseDateTimeStr(c.typed, parsed));
        EXPECT_EQ(*edit->GetDateTime(), parsed);
    }

    // Not a date: shown as it is, the stored date left alone.
    const auto stored = edit->GetDateTime();
    edit->SetValue(u"2013-02-29");
    EXPECT_EQ(edit->GetValue(), u"2013-02-29");
    EXPECT_EQ(edit->GetDateTime(), stored);
    EXPECT_TRUE(edit->GetLineEdit()->property(kivmetadataui::UI_DateTextEdit::kInvalidProperty).toBool());

    edit->SetValue(u"");
    EXPECT_FALSE(edit->GetDateTime().has_value());
    EXPECT_FALSE(edit->GetLineEdit()->property(kivmetadataui::UI_DateTextEdit::kInvalidProperty).toBool());
    EXPECT_TRUE(edit->GetLineEdit()->property(kivmetadataui::UI_DateTextEdit::kSkinProperty).toBool());
}

TEST(UI_DateTextEditTest, ValidationRefusesOnlyKnownNonEmptyNonDates)
{
    IntrusivePtr<kivmetadataui::UI_DateTextEdit> edit(new kivmetadataui::UI_DateTextEdit());
    EXPECT_EQ(edit->ValidateText(u"2013-13-01"), kWarning);
    EXPECT_FALSE(edit->ValidateText(u"2013-01-01 24:00:00").has_value());
    EXPECT_FALSE(edit->ValidateText(u"").has_value()) << "an empty text clears the value";
    edit->SetValueUnknown(true);
    EXPECT_FALSE(edit->ValidateText(u"not a date").has_value()) << "mixed values are not checked";
}

TEST(UI_DateTextEditTest, TypedTextIsRefusedOrNormalisedOnCommit)
{
    IntrusivePtr<RecordingDateEdit> edit(new RecordingDateEdit());
    QLineEdit *line = edit->GetLineEdit();
    ASSERT_NE(line, nullptr);
    int changes = 0;
    edit->NotifyWhenChanged(
        std::make_shared<std::function<void(kivui::Message *)>>([&](kivui::Message *) { ++changes; }));

    QTest::keyClicks(line, QStringLiteral("2013/1/1"));
    EXPECT_FALSE(edit->CommitEditing());
    ASSERT_EQ(edit->mWarnings.size(), 1u);
    EXPECT_EQ(edit->mWarnings[0], kWarning);
    EXPECT_EQ(edit->GetValue(), u"2013/1/1") << "the typed text stays in the field";
    EXPECT_FALSE(edit->GetDateTime().has_value());
    EXPECT_EQ(changes, 0);

    line->clear();
    QTest::keyClicks(line, QStringLiteral("2013/01/01T10:20"));
    EXPECT_TRUE(edit->CommitEditing());
    EXPECT_EQ(edit->GetValue(), u"2013-01-01 10:20");
    ASSERT_TRUE(edit->GetDateTime().has_value());
    EXPECT_EQ(edit->GetDateTime()->hour, 10);
    EXPECT_EQ(changes, 1);
}

// The field's background in the middle of an empty field.
QColor Background(kivmetadataui::UI_DateTextEdit &edit)
{
    QLineEdit *line = edit.GetLineEdit();
    line->ensurePolished();
    const QImage image = line->grab().toImage();
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

TEST(UI_DateTextEditTest, EachLookStylesTheFieldWithItsSkin)
{
    using kivui::skins::core::SkinManager;
    using kivui::skins::core::SkinVersion;
    kivmetadataui::ModuleInfo::Get();
    IntrusivePtr<kivmetadataui::UI_DateTextEdit> edit(new kivmetadataui::UI_DateTextEdit());
    edit->UI_SetLocalRectF(kivcore::RectF(0, 0, 220, 24));

    SkinManager::Start(SkinVersion::kV5);
    SkinManager::SetSkinVersion(SkinVersion::kV5);
    EXPECT_GT(Background(*edit).lightness(), 230) << "the older look is light";
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_LT(Background(*edit).lightness(), 60) << "the v7 look is dark";
    EXPECT_TRUE(SkinManager::CurrentStyleSheet().contains(QStringLiteral("kivDateTextEdit")));
}

} // namespace

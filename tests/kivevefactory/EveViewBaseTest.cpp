#include <kivevefactory/UI_EveViewBase.h>

#include <kivui/OS_ResourceManager.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <kivcore/Exceptions.h>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTest>

using kivevefactory::UI_EveViewBase;
using kivui::dialogs::ScriptedAnswer;
using kivui::dialogs::ScriptedResponses;

namespace {

template <typename T> using Ptr = kivcore::utility::IntrusivePtr<T>;

class EveViewBaseTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        EXPECT_EQ(ScriptedResponses::Pending(), 0u);
        ScriptedResponses::Clear();
    }
    Ptr<UI_EveViewBase> Make(std::string const &name)
    {
        return Ptr<UI_EveViewBase>(new UI_EveViewBase(&mSupplier, &mResources, name));
    }
    kivui::drawbot::QtSupplier mSupplier;
    kivui::utility::OS_ResourceManager mResources{QStringLiteral(":/KivEveFactoryTest/")};
};

TEST_F(EveViewBaseTest, NamedLayoutGivesControlsTitleAndTheStandardButtonRow)
{
    auto view = Make("AskName");
    ASSERT_TRUE(view->HasLayout());
    EXPECT_EQ(view->UI_GetNodeID(), "AskName");
    EXPECT_EQ(view->GetTitle(), u"Ask Name");
    EXPECT_TRUE(view->FindControl<kivui::UI_SubView>("extraPanel"));
    EXPECT_THROW(view->FindControl<kivui::UI_SubView>("nameField"), kivcore::config::ErrorException);
    EXPECT_THROW(view->FindControl<kivui::UI_SubView>("missing"), kivcore::config::NullPtrException);

    // Without buttons of its own the layout gets OK and Cancel, findable by identifier.
    ASSERT_NE(view->GetOkButton(), nullptr);
    ASSERT_NE(view->GetCancelButton(), nullptr);
    EXPECT_EQ(view->GetOkButton()->UI_GetNodeID(), "okButton");
    EXPECT_EQ(view->GetCancelButton()->UI_GetNodeID(), "cancelButton");
    auto *okButton = view->GetOkButton()->UI_GetWidget()->findChild<QAbstractButton *>();
    if (!okButton) okButton = qobject_cast<QAbstractButton *>(view->GetOkButton()->UI_GetWidget());
    ASSERT_NE(okButton, nullptr);
    EXPECT_EQ(okButton->text(), QStringLiteral("OK"));
    EXPECT_TRUE(view->GetDialog()->isAncestorOf(okButton));

    // The designed size is the minimum, grown by the button row; not resizable.
    kivcore::RectF const rect = view->UI_GetLocalRectF(false);
    EXPECT_GE(rect.width, 300.0f);
    EXPECT_GT(rect.height, 90.0f);
    EXPECT_EQ(view->GetDialog()->minimumSize(), view->GetDialog()->maximumSize());
}

TEST_F(EveViewBaseTest, RunsAnsweredByScriptWithTheDefaultFocus)
{
    auto view = Make("AskName");
    QWidget *focused = nullptr;
    ScriptedResponses::PushAction(
        [&focused](QWidget *dialog) {
            focused = QApplication::focusWidget();
            QTest::keyClicks(dialog->findChild<QLineEdit *>(QStringLiteral("nameField")), QStringLiteral("Basic"));
        },
        ScriptedAnswer::kOk);
    EXPECT_TRUE(view->Run());
    EXPECT_EQ(focused, view->GetDefaultFocusWidget());
    EXPECT_EQ(qobject_cast<QLineEdit *>(view->FindWidget("nameField"))->text(), QStringLiteral("Basic"));

    ScriptedResponses::PushAction(
        [&view](QWidget *) { QTest::mouseClick(view->GetCancelButton()->UI_GetWidget(), Qt::LeftButton); });
    EXPECT_FALSE(view->Run());
    EXPECT_EQ(view->GetResult(), kivui::UI_Dialog::Result::kCancel);
}

TEST_F(EveViewBaseTest, LayoutsWithTheirOwnButtonsOrNoneAtAll)
{
    auto own = Make("OwnButtons");
    ASSERT_TRUE(own->HasLayout());
    EXPECT_EQ(own->GetOkButton(), own->FindNode("okButton"));
    EXPECT_EQ(own->GetCancelButton(), nullptr);
    EXPECT_EQ(own->GetDefaultFocusWidget(), nullptr);
    ScriptedResponses::PushOk();
    EXPECT_TRUE(own->Run());

    auto missing = Make("NoSuchLayout");
    EXPECT_FALSE(missing->HasLayout());
    EXPECT_EQ(missing->GetOkButton(), nullptr);
    Ptr<UI_EveViewBase> noResources(new UI_EveViewBase(&mSupplier, nullptr, "AskName"));
    EXPECT_FALSE(noResources->HasLayout());
}

} // namespace

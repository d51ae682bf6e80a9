#include <kivui/MessageBoxes.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_ArchivedDialog.h>
#include <kivui/UI_Dialog.h>
#include <kivui/UI_NodeFactory.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextButton.h>
#include <kivui/drawbot/QtSupplier.h>

#include <kivcore/Exceptions.h>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <string>
#include <vector>

template <typename T> using Ptr = kivcore::utility::IntrusivePtr<T>;
using kivui::UI_ArchivedDialog;
using kivui::UI_Dialog;
using kivui::dialogs::ScriptedAnswer;
using kivui::dialogs::ScriptedResponses;

namespace {

// A dialog with text buttons as OK and Cancel, whose OK can be refused.
class TestDialog : public UI_Dialog {
public:
    TestDialog(kivui::drawbot::SupplierInterface *supplier)
        : UI_Dialog(supplier, "$$$/kivuitest/TestDialog/Title=Test Dialog")
    {
        ChildPushBack(mOk);
        ChildPushBack(mCancel);
        mOk->UI_SetLocalRectF({10, 10, 80, 24});
        SetButtons(mOk.get(), mCancel.get());
    }

    void DefaultCloseOk() override
    {
        ++okPresses;
        if (refuseOk) {
            kivui::messagebox::ShowStop(UI_GetDrawSupplier(), "$$$/kivuitest/Refused=Refused", u"Not yet", this);
            return;
        }
        UI_Dialog::DefaultCloseOk();
    }

    Ptr<kivui::UI_TextButton> mOk{new kivui::UI_TextButton(u"OK")};
    Ptr<kivui::UI_TextButton> mCancel{new kivui::UI_TextButton(u"Cancel")};
    bool refuseOk = false;
    int okPresses = 0;
};

class DialogsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ScriptedResponses::Clear();
        ScriptedResponses::ClearHistory();
    }
    void TearDown() override
    {
        EXPECT_EQ(ScriptedResponses::Pending(), 0u) << "a scripted response was not used";
        ScriptedResponses::Clear();
        kivui::utility::PrefManager::Destroy();
    }
    kivui::drawbot::QtSupplier mSupplier;
};

TEST_F(DialogsTest, ConfirmationBoxAnswersAndShowsLocalisedTexts)
{
    ScriptedResponses::PushOk();
    EXPECT_TRUE(kivui::dialogs::SimpleConfirmationBox(&mSupplier, "$$$/kivuitest/Delete/Title=Delete Settings",
                                                      u"Delete 'Basic'?", nullptr,
                                                      "$$$/kivuitest/Delete/confirm=&Delete"));
    ScriptedResponses::PushCancel();
    EXPECT_FALSE(kivui::dialogs::SimpleConfirmationBox(&mSupplier, u"T", u"M", nullptr, u"&Delete"));

    // The confirm button carries the given text with its mnemonic; Cancel is the toolkit's.
    QStringList buttons;
    ScriptedResponses::PushAction(
        [&buttons](QWidget *dialog) {
            for (auto *button : dialog->findChildren<QPushButton *>())
                buttons << button->text();
        },
        ScriptedAnswer::kCancel);
    kivui::dialogs::SimpleConfirmationBox(&mSupplier, u"T", u"M", nullptr, "$$$/kivuitest/Delete/confirm=&Delete");
    EXPECT_TRUE(buttons.contains(QStringLiteral("&Delete"))) << buttons.join(',').toStdString();
    EXPECT_TRUE(buttons.contains(QStringLiteral("Cancel")));

    auto const &history = ScriptedResponses::History();
    ASSERT_EQ(history.size(), 3u);
    EXPECT_EQ(history[0].title, u"Delete Settings");
    EXPECT_EQ(history[0].message, u"Delete 'Basic'?");
}

TEST_F(DialogsTest, InputBoxReturnsTypedTextOnlyOnOk)
{
    std::u16string text = u"NewProperty";
    std::u16string shownText;
    ScriptedResponses::PushAction(
        [&shownText](QWidget *dialog) { shownText = dialog->findChild<QLineEdit *>()->text().toStdU16String(); });
    ScriptedResponses::PushOk(u"Basic ✓");
    EXPECT_TRUE(kivui::dialogs::SimpleInputBox(&mSupplier, "$$$/kivuitest/Save/Title=Save Settings",
                                               "$$$/kivuitest/Save/Label=Name:", text));
    EXPECT_EQ(shownText, u"NewProperty");
    EXPECT_EQ(text, u"Basic ✓");
    EXPECT_EQ(ScriptedResponses::History().back().message, u"Name:");

    ScriptedResponses::Push({ScriptedAnswer::kCancel, u"ignored", {}});
    EXPECT_FALSE(kivui::dialogs::SimpleInputBox(&mSupplier, u"T", u"L", text));
    EXPECT_EQ(text, u"Basic ✓");
}

TEST_F(DialogsTest, UnansweredBoxesAreCancelledInsteadOfBlocking)
{
    std::u16string text = u"keep";
    EXPECT_FALSE(kivui::dialogs::SimpleInputBox(&mSupplier, u"T", u"L", text));
    EXPECT_EQ(text, u"keep");
    EXPECT_FALSE(kivui::dialogs::SimpleConfirmationBox(&mSupplier, u"T", u"M"));
    kivui::dialogs::SimpleErrorMessageBox(&mSupplier, u"Error", u"Something failed");
    kivui::messagebox::ShowStop(&mSupplier, u"Stop", u"Cannot do that");
    EXPECT_EQ(ScriptedResponses::History().size(), 4u);
    EXPECT_EQ(ScriptedResponses::History()[3].message, u"Cannot do that");
}

TEST_F(DialogsTest, DialogClosesThroughItsButtonsAndRefusalsStayOpen)
{
    Ptr<TestDialog> dialog(new TestDialog(&mSupplier));
    EXPECT_EQ(dialog->GetTitle(), u"Test Dialog");

    ScriptedResponses::PushOk();
    EXPECT_TRUE(dialog->RunModal());
    EXPECT_FALSE(dialog->IsOpen());

    ScriptedResponses::PushCancel();
    EXPECT_FALSE(dialog->RunModal());

    // Clicking the real buttons and pressing Escape go the same ways.
    ScriptedResponses::PushAction(
        [&dialog](QWidget *) { QTest::mouseClick(dialog->mOk->UI_GetWidget(), Qt::LeftButton); });
    EXPECT_TRUE(dialog->RunModal());
    ScriptedResponses::PushAction([](QWidget *w) { QTest::keyClick(w, Qt::Key_Escape); });
    EXPECT_FALSE(dialog->RunModal());

    // The window's close box cancels as well.
    ScriptedResponses::PushAction([](QWidget *w) { w->close(); });
    EXPECT_FALSE(dialog->RunModal());
    EXPECT_EQ(dialog->GetResult(), UI_Dialog::Result::kCancel);

    // A refused OK shows a stop box (answered by the next response) and keeps
    // the dialog open until a later OK is accepted.
    dialog->refuseOk = true;
    dialog->okPresses = 0;
    ScriptedResponses::PushOk(); // the dialog: refused
    ScriptedResponses::PushOk(); // the stop box
    ScriptedResponses::PushAction([&dialog](QWidget *) { dialog->refuseOk = false; }, ScriptedAnswer::kOk);
    EXPECT_TRUE(dialog->RunModal());
    EXPECT_EQ(dialog->okPresses, 2);
    EXPECT_EQ(ScriptedResponses::History().back().title, u"Refused");

    // A disabled OK button cannot be pressed, not even by a script.
    dialog->mOk->UI_GetWidget()->setEnabled(false);
    dialog->okPresses = 0;
    ScriptedResponses::PushOk();
    EXPECT_FALSE(dialog->RunModal());
    EXPECT_EQ(dialog->okPresses, 0);
}

TEST_F(DialogsTest, DialogsOpenOverTheirParentsWindow)
{
    Ptr<kivui::UI_SubView> host(new kivui::UI_SubView());
    Ptr<kivui::UI_SubView> inner(new kivui::UI_SubView());
    host->ChildPushBack(inner);
    Ptr<UI_Dialog> dialog(new UI_Dialog(&mSupplier, u"Child", inner.get()));
    EXPECT_EQ(dialog->GetDialog()->parentWidget(), host->UI_GetWidget());

    QWidget *boxParent = nullptr;
    ScriptedResponses::PushAction([&boxParent](QWidget *box) { boxParent = box->parentWidget(); }, ScriptedAnswer::kOk);
    kivui::messagebox::ShowStop(&mSupplier, u"Stop", u"Over the host", inner.get());
    EXPECT_EQ(boxParent, host->UI_GetWidget());
}

TEST_F(DialogsTest, WindowRectangleIsRestoredFromTheStoreByNodeIdentifier)
{
    QTemporaryDir dir;
    Ptr<TestDialog> dialog(new TestDialog(&mSupplier));
    dialog->UI_SetNodeID("MetadataErrorDialog");
    dialog->SetMinimumSize({300, 100});

    // No store: the default size.
    EXPECT_FALSE(dialog->RestoreWindowPositionAndSize({600, 280}));
    EXPECT_EQ(dialog->UI_GetLocalRectF(false), (kivcore::RectF{0, 0, 600, 280}));

    auto *prefs = kivui::utility::PrefManager::CreateAtPath(dir.filePath(QStringLiteral("p.ini")));
    prefs->SetWindowPositionAndSize("MetadataErrorDialog", {0, 0, 0, 0});
    EXPECT_FALSE(dialog->RestoreWindowPositionAndSize({640, 300}));
    EXPECT_EQ(dialog->UI_GetLocalRectF(false).width, 640.0f);

    prefs->SetWindowPositionAndSize("MetadataErrorDialog", {40, 50, 700, 320});
    EXPECT_TRUE(dialog->RestoreWindowPositionAndSize({600, 280}));
    EXPECT_EQ(dialog->UI_GetGlobalStructureRect(), (kivcore::RectF{40, 50, 700, 320}));

    // Below the minimum the window keeps its minimum size.
    prefs->SetWindowPositionAndSize("MetadataErrorDialog", {40, 50, 120, 60});
    EXPECT_TRUE(dialog->RestoreWindowPositionAndSize());
    EXPECT_EQ(dialog->UI_GetLocalRectF(false), (kivcore::RectF{0, 0, 300, 100}));

    dialog->UI_SetGlobalStructureRect({70, 80, 500, 260});
    dialog->SaveWindowPositionAndSize();
    EXPECT_EQ(prefs->GetWindowPositionAndSize("MetadataErrorDialog"), (kivcore::RectF{70, 80, 500, 260}));
}

class ArchivedDialogTest : public DialogsTest {
protected:
    kivui::utility::OS_ResourceManager mResources{QStringLiteral(":/KivuiDialogsTest/")};
};

TEST_F(ArchivedDialogTest, ControlsAreToolkitNodesFoundByIdentifier)
{
    Ptr<UI_ArchivedDialog> dialog(new UI_ArchivedDialog(&mSupplier, &mResources, "Sample"));
    ASSERT_TRUE(dialog->HasArchive());
    // The archive's title and texts are localised.
    EXPECT_EQ(dialog->GetTitle(), u"Sample Archive");
    auto *caption = qobject_cast<QLabel *>(dialog->FindWidget("captionID"));
    ASSERT_NE(caption, nullptr);
    EXPECT_EQ(caption->text(), QStringLiteral("Choose wisely"));

    Ptr<kivui::UI_SubView> panel = dialog->FindControl<kivui::UI_SubView>("panelID");
    ASSERT_TRUE(panel);
    EXPECT_TRUE(dialog->GetDialog()->isAncestorOf(panel->UI_GetWidget()));
    // The dialog is the node parent of its archive's controls (key dispatch goes through it).
    EXPECT_EQ(panel->UI_GetParent(), dialog.get());

    // The window as built has the archive's designed size.
    EXPECT_EQ(dialog->UI_GetLocalRectF(false), (kivcore::RectF{0, 0, 360, 180}));

    Ptr<UI_ArchivedDialog> withTitle(new UI_ArchivedDialog(&mSupplier, &mResources, "Sample", u"Given Title"));
    EXPECT_EQ(withTitle->GetTitle(), u"Given Title");
}

TEST_F(ArchivedDialogTest, LookupFailuresRaiseTheToolkitErrors)
{
    Ptr<UI_ArchivedDialog> dialog(new UI_ArchivedDialog(&mSupplier, &mResources, "Sample"));
    try {
        dialog->FindControl<kivui::UI_SubView>("noSuchID");
        FAIL() << "no exception";
    } catch (kivcore::config::NullPtrException const &e) {
        EXPECT_EQ(e.TypeName(), "kivui::UI_SubView");
    }
    // A node of another type and a plain Qt widget are both wrong types.
    std::function<void()> const wrongTypes[] = {[&] { dialog->FindControl<UI_Dialog>("panelID"); },
                                                [&] { dialog->FindControl<kivui::UI_SubView>("plainButtonID"); }};
    for (auto const &find : wrongTypes) {
        try {
            find();
            ADD_FAILURE() << "no exception";
        } catch (kivcore::config::ErrorException const &e) {
            EXPECT_EQ(e.Key(), kivcore::config::kInvalidTypeConversionKey);
            EXPECT_EQ(e.Level(), 1);
            EXPECT_EQ(e.LocalizedMessage(), u"Invalid type conversion.");
        }
    }
}

TEST_F(ArchivedDialogTest, MissingOrBrokenArchivesGiveAnEmptyDialog)
{
    Ptr<UI_ArchivedDialog> missing(new UI_ArchivedDialog(&mSupplier, &mResources, "NoSuchArchive", u"T"));
    EXPECT_FALSE(missing->HasArchive());
    EXPECT_EQ(missing->FindNode("panelID"), nullptr);
    Ptr<UI_ArchivedDialog> broken(new UI_ArchivedDialog(&mSupplier, QByteArray("<ui><widget"), u"T"));
    EXPECT_FALSE(broken->HasArchive());
    Ptr<UI_ArchivedDialog> noResources(new UI_ArchivedDialog(&mSupplier, nullptr, "Sample", u"T"));
    EXPECT_FALSE(noResources->HasArchive());
    EXPECT_THROW(noResources->FindControl<kivui::UI_SubView>("panelID"), kivcore::config::NullPtrException);
}

TEST_F(ArchivedDialogTest, LibrariesRegisterTheirOwnControlClasses)
{
    struct Marked : kivui::UI_SubView {
        std::u16string text;
    };
    kivui::UI_NodeFactory::Register(
        "kivuitest::Marked", [](kivui::drawbot::SupplierInterface *) { return Ptr<kivui::UI_Node>(new Marked()); },
        [](kivui::UI_Node &node, std::u16string const &text) { static_cast<Marked &>(node).text = text; });
    QByteArray const archive = R"(<ui version="4.0"><widget class="QWidget" name="top">
        <property name="geometry"><rect><x>0</x><y>0</y><width>200</width><height>90</height></rect></property>
        <widget class="kivuitest::Marked" name="markedID">
          <property name="geometry"><rect><x>5</x><y>6</y><width>70</width><height>20</height></rect></property>
          <property name="text"><string>$$$/kivuitest/Marked=Marked text</string></property>
        </widget></widget></ui>)";
    Ptr<UI_ArchivedDialog> dialog(new UI_ArchivedDialog(&mSupplier, archive, u"T"));
    auto marked = dialog->FindControl<Marked>("markedID");
    EXPECT_EQ(marked->text, u"Marked text");
    EXPECT_EQ(marked->UI_GetWidget()->geometry(), QRect(5, 6, 70, 20));
    EXPECT_EQ(dialog->UI_GetLocalRectF(false), (kivcore::RectF{0, 0, 200, 90}));
}

// An archived dialog like the toolkit's option dialogs: a radio group, a
// popup and OK/Cancel text buttons, all toolkit controls.
TEST_F(ArchivedDialogTest, ArchiveControlsAreTheToolkitsControls)
{
    Ptr<UI_ArchivedDialog> dialog(new UI_ArchivedDialog(&mSupplier, &mResources, "Options", u"Options"));
    auto group = dialog->FindControl<kivui::UI_RadioGroup>("optionsGroupID");
    dialog->SetButtons(dialog->FindControl<kivui::UI_TextButton>("okButtonID").get(),
                       dialog->FindControl<kivui::UI_TextButton>("cancelButtonID").get());
    EXPECT_EQ(group->CountButtons(), 3);
    EXPECT_EQ(dialog->FindControl<kivui::UI_StaticText>("introID")->GetText(), u"How should the template be applied?");
    auto popup = dialog->FindControl<kivui::UI_Popup>("popupID");
    ASSERT_EQ(popup->CountItems(), 2);
    EXPECT_EQ(popup->GetItemText(0), u"First");
    EXPECT_EQ(dialog->FindControl<kivui::UI_TextButton>("okButtonID")->GetText(), u"OK");

    // A user picks the third option and presses OK.
    ScriptedResponses::PushAction(
        [&group](QWidget *) {
            auto buttons = group->UI_GetWidget()->findChildren<QAbstractButton *>();
            ASSERT_EQ(buttons.size(), 3);
            buttons[2]->click();
        },
        ScriptedAnswer::kOk);
    EXPECT_TRUE(dialog->RunModal());
    EXPECT_EQ(group->GetValue(), 2);
}

} // namespace

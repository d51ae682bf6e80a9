#include <kivui/ScriptedResponses.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_NodeManager.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_TextEdit_MS.h>
#include <kivui/UI_URLEdit.h>

#include <gtest/gtest.h>

#include "UiTestSupport.h"

#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QToolButton>

#include <memory>
#include <vector>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivcore::utility::MakeIntrusive;

namespace kivui {
namespace {

// Another field to move the focus to.
class ControlsTextTest : public test::ControlWindowTest {
protected:
    void SetUp() override
    {
        dialogs::ScriptedResponses::Clear();
        dialogs::ScriptedResponses::ClearHistory();
        window->ChildPushBack(other);
        other->UI_SetLocalRectF(RectF{0, 250, 100, 22});
        ControlWindowTest::SetUp();
    }

    IntrusivePtr<UI_TextEdit> other = MakeIntrusive<UI_TextEdit>();
};

TEST_F(ControlsTextTest, EditingSendsBeginChangesAndEndOnReturnOrFocusLoss)
{
    auto edit = Add(MakeIntrusive<UI_TextEdit>());

    edit->UI_SetFocus();
    EXPECT_TRUE(edit->IsEditing());
    QTest::keyClicks(edit->GetLineEdit(), "abc");
    EXPECT_EQ(listener.interactive, (std::vector<int>{0, 1, 1, 1}));
    EXPECT_EQ(listener.changed, 0);
    QTest::keyClick(edit->GetLineEdit(), Qt::Key_Return);
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2}));
    EXPECT_EQ(listener.changed, 1);
    EXPECT_EQ(edit->GetValue(), u"abc");
    EXPECT_TRUE(edit->UI_HasFocus());

    // Typing again starts a new edit; leaving the field commits it.
    QTest::keyClicks(edit->GetLineEdit(), "d");
    other->UI_SetFocus();
    EXPECT_FALSE(edit->IsEditing());
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2, 0, 2}));
    EXPECT_EQ(listener.changed, 2);
    EXPECT_EQ(edit->GetValue(), u"abcd");

    // Focus in and out without a change ends the edit but reports no change.
    edit->UI_SetFocus();
    other->UI_SetFocus();
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2, 0, 2, 0, 2}));
    EXPECT_EQ(listener.changed, 2);

    // SetValue reports a change only when asked and only when the value
    // changes, and never as the user's edit.
    std::size_t const interactive = listener.interactive.size();
    edit->SetValue(u"one", false);
    edit->SetValue(u"two", true);
    edit->SetValue(u"two", true);
    EXPECT_EQ(listener.changed, 3);
    EXPECT_EQ(edit->GetValue(), u"two");
    EXPECT_EQ(listener.interactive.size(), interactive);

    // A handler emptied in place is skipped: that is how callers disconnect.
    *listener.onChanged = nullptr;
    edit->SetValue(u"x", true);
    EXPECT_EQ(listener.changed, 3);
}

TEST_F(ControlsTextTest, ControlDroppedByItsOwnChangeHandlerLivesUntilTheEventLoop)
{
    // Panels rebuild themselves from a change notice, dropping the control
    // that is still sending it.
    auto edit = Add(MakeIntrusive<UI_TextEdit>());
    QPointer<QWidget> widget = edit->UI_GetWidget();
    edit->NotifyWhenChanged(
        std::make_shared<std::function<void(Message *)>>([&](Message *) { window->DeleteChildren(); }));
    edit->UI_SetFocus();
    QTest::keyClicks(edit->GetLineEdit(), "x");
    UI_TextEdit *raw = edit.get();
    edit.reset();
    QTest::keyClick(raw->GetLineEdit(), Qt::Key_Return);
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2}));
    EXPECT_EQ(window->UI_CountChildren(), 0);
    EXPECT_FALSE(widget.isNull());
    QCoreApplication::sendPostedEvents();
    QApplication::processEvents();
    EXPECT_TRUE(widget.isNull());
}

TEST_F(ControlsTextTest, UnknownStateShowsItsTextAsPlaceholderWithAnEmptyValue)
{
    auto edit = Add(MakeIntrusive<UI_TextEdit>());
    edit->SetValue(u"old", false);
    edit->SetUnknownStateText(u"<Multiple Values>");
    edit->SetValueUnknown(true);
    EXPECT_EQ(edit->GetValue(), u"");
    EXPECT_EQ(edit->GetLineEdit()->placeholderText(), QStringLiteral("<Multiple Values>"));

    // Typing gives the control a known value again.
    edit->UI_SetFocus();
    QTest::keyClicks(edit->GetLineEdit(), "n");
    EXPECT_TRUE(edit->IsValueKnown());
    // So does setting a value.
    edit->SetValueUnknown(true);
    edit->SetValue(u"v", false);
    EXPECT_FALSE(edit->IsValueUnknown());
}

TEST_F(ControlsTextTest, ReadOnlyTextCannotBeTypedIntoButStaysSelectable)
{
    auto edit = Add(MakeIntrusive<UI_TextEdit>());
    auto multi = Add(MakeIntrusive<UI_TextEdit_MS>());
    for (UI_TextEdit *e : {edit.get(), static_cast<UI_TextEdit *>(multi.get())}) {
        e->SetValue(u"fixed", false);
        e->SetReadOnlyMode(true);
        e->UI_SetFocus();
        QTest::keyClicks(e->GetLineEdit() ? static_cast<QWidget *>(e->GetLineEdit())
                                          : static_cast<QWidget *>(e->GetPlainTextEdit()->viewport()),
                         "zz");
        EXPECT_EQ(e->GetValue(), u"fixed");
        EXPECT_FALSE(e->IsEditing());
        e->SelectAll();
        QString const selected =
            e->GetLineEdit() ? e->GetLineEdit()->selectedText() : e->GetPlainTextEdit()->textCursor().selectedText();
        EXPECT_EQ(selected, QStringLiteral("fixed"));
    }
    EXPECT_TRUE(listener.interactive.empty());
}

class NoBadEdit : public UI_TextEdit {
public:
    std::optional<std::u16string> ValidateText(std::u16string const &text) const override
    {
        if (text == u"bad") return u"The text is not valid.";
        return std::nullopt;
    }
};

TEST_F(ControlsTextTest, RefusedTextShowsTheWarningAndStaysInTheField)
{
    auto edit = Add(MakeIntrusive<NoBadEdit>());
    edit->UI_SetFocus();
    dialogs::ScriptedResponses::PushOk();
    QTest::keyClicks(edit->GetLineEdit(), "bad");
    QTest::keyClick(edit->GetLineEdit(), Qt::Key_Return);
    ASSERT_EQ(dialogs::ScriptedResponses::History().size(), 1u);
    EXPECT_EQ(dialogs::ScriptedResponses::History()[0].message, u"The text is not valid.");
    EXPECT_EQ(edit->GetValue(), u"bad");
    EXPECT_TRUE(edit->IsEditing());
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0}));
    EXPECT_EQ(listener.changed, 0);

    QTest::keyClick(edit->GetLineEdit(), Qt::Key_Backspace);
    QTest::keyClick(edit->GetLineEdit(), Qt::Key_Return);
    EXPECT_EQ(edit->GetValue(), u"ba");
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2}));
    EXPECT_EQ(listener.changed, 1);
}

TEST_F(ControlsTextTest, EmptyCommitRestoresThePreviousValueWhenEmptyIsNotAllowed)
{
    auto edit = Add(MakeIntrusive<UI_TextEdit>());
    edit->SetValue(u"keep", false);
    edit->UI_SetFocus();
    for (auto [allowEmpty, expected] : {std::pair{false, u"keep"}, {true, u""}}) {
        edit->SetAllowEmpty(allowEmpty);
        edit->SelectAll();
        QTest::keyClick(edit->GetLineEdit(), Qt::Key_Delete);
        QTest::keyClick(edit->GetLineEdit(), Qt::Key_Return);
        EXPECT_EQ(edit->GetValue(), expected) << allowEmpty;
    }
}

TEST_F(ControlsTextTest, MultiLineEditKeepsLineBreaksAndCommitsOnFocusLoss)
{
    auto edit = Add(MakeIntrusive<UI_TextEdit_MS>());
    edit->UI_SetFocus();
    QTest::keyClicks(edit->GetPlainTextEdit()->viewport(), "a");
    QTest::keyClick(edit->GetPlainTextEdit()->viewport(), Qt::Key_Return);
    QTest::keyClicks(edit->GetPlainTextEdit()->viewport(), "b");
    EXPECT_EQ(edit->GetValue(), u"a\nb");
    EXPECT_TRUE(edit->IsEditing()); // Return is a line break here
    other->UI_SetFocus();
    EXPECT_EQ(listener.Stages(), (std::vector<int>{0, 2}));
    EXPECT_EQ(listener.changed, 1);
}

TEST_F(ControlsTextTest, AutoCompleteOffersEntriesBeginningWithTheTypedText)
{
    auto edit = Add(MakeIntrusive<UI_AutoCompleteTextEdit>());
    edit->SetEntryList({u"Apple", u"apricot", u"Banana"});
    edit->UI_SetFocus();
    QTest::keyClicks(edit->GetLineEdit(), "ap");
    QCompleter *completer = edit->GetCompleter();
    EXPECT_EQ(completer->completionCount(), 2); // any case

    edit->SetEntryList({});
    completer->setCompletionPrefix(QStringLiteral("ap"));
    EXPECT_EQ(completer->completionCount(), 0);
}

TEST_F(ControlsTextTest, URLEditOpensItsAddressFromTheButton)
{
    std::vector<std::u16string> opened;
    UI_URLEdit::SetOpener([&](std::u16string const &url) {
        opened.push_back(url);
        return true;
    });
    auto edit = Add(MakeIntrusive<UI_URLEdit>());
    EXPECT_FALSE(edit->GetOpenButton()->isEnabled());
    EXPECT_FALSE(edit->OpenURL());
    edit->SetValue(u"https://example.com/a b", false);
    EXPECT_TRUE(edit->GetOpenButton()->isEnabled());
    QTest::mouseClick(edit->GetOpenButton(), Qt::LeftButton);
    EXPECT_EQ(opened, std::vector<std::u16string>{u"https://example.com/a b"});

    // The field and the button share the node's width.
    edit->UI_SetLocalRectF(RectF{0, 0, 300, 22});
    QRect const field = edit->GetLineEdit()->geometry();
    QRect const button = edit->GetOpenButton()->geometry();
    EXPECT_EQ(button.right(), 299);
    EXPECT_LT(field.right(), button.left());
    EXPECT_GT(field.width(), 250);
    UI_URLEdit::SetOpener({});
}

TEST_F(ControlsTextTest, DraggableEditGrowsByWholeLinesFromItsBottomEdge)
{
    auto edit = Add(MakeIntrusive<UI_DragableTextEdit>());
    int sizeChanges = 0;
    edit->SetSizeChangedFxn(std::make_shared<std::function<void()>>([&] { ++sizeChanges; }));
    edit->SetLineCount(2);
    float const twoLines = edit->HeightForLines(2);
    float const perLine = edit->HeightForLines(3) - twoLines;
    ASSERT_GT(perLine, 5.0f);
    EXPECT_EQ(edit->UI_GetLocalRectF(false).height, twoLines);
    // The editor leaves the grip strip free.
    EXPECT_EQ(edit->GetPlainTextEdit()->height(), int(twoLines - UI_DragableTextEdit::kGripHeight));

    QWidget *frame = edit->UI_GetWidget();
    int const gripY = frame->height() - 2;
    QTest::mousePress(frame, Qt::LeftButton, {}, QPoint(50, gripY));
    ASSERT_NE(UI_NodeManager::Get().GetInputCapture(), nullptr);
    QTest::mouseMove(frame, QPoint(50, gripY + int(3 * perLine)));
    EXPECT_EQ(edit->GetLineCount(), 5);
    QTest::mouseRelease(frame, Qt::LeftButton, {}, QPoint(50, gripY + int(3 * perLine)));
    EXPECT_EQ(edit->UI_GetLocalRectF(false).height, edit->HeightForLines(5));
    EXPECT_EQ(sizeChanges, 1);

    // Dragging far up stops at one line.
    QTest::mousePress(frame, Qt::LeftButton, {}, QPoint(50, frame->height() - 2));
    QTest::mouseMove(frame, QPoint(50, -500));
    QTest::mouseRelease(frame, Qt::LeftButton, {}, QPoint(50, -500));
    EXPECT_EQ(edit->GetLineCount(), 1);
    // A press above the grip is the editor's, not a drag.
    QTest::mousePress(frame, Qt::LeftButton, {}, QPoint(50, 2));
    EXPECT_EQ(UI_NodeManager::Get().GetInputCapture(), nullptr);
}

} // namespace
} // namespace kivui

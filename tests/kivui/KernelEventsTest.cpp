#include <kivui/Events.h>
#include <kivui/UI_NodeManager.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>

#include <gtest/gtest.h>

#include "UiTestSupport.h"

#include <QCursor>
#include <QLineEdit>
#include <QWidget>

#include <string>
#include <tuple>
#include <vector>

using kivcore::PointF;
using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivcore::utility::MakeIntrusive;

namespace kivui {
namespace {

std::vector<std::string> gLog;

class LoggingView : public UI_SubView {
public:
    explicit LoggingView(std::string inName) : name(std::move(inName)) { UI_SetNodeID(name); }
    std::string name;
    bool takePre = false;
    bool takeKey = false;
    bool takeMouse = false;
    bool answerCursor = false;
    std::vector<KeyboardEvent> keys;
    std::vector<UI_Node *> keyFocus;
    std::vector<MouseEvent> mouse;
    IntrusivePtr<InputCapture> captureOnPress;

    bool UI_DoPreKeyboardEvent(UI_Node *, KeyboardEvent const &) override
    {
        gLog.push_back("pre:" + name);
        return takePre;
    }
    bool UI_DoKeyboardEvent(UI_Node *focus, KeyboardEvent const &event) override
    {
        gLog.push_back("key:" + name);
        // QTest presses modifier keys on their own first; those arrive as kUnknown.
        if (event.keyDown && event.code != KeyboardCode::kUnknown) {
            keys.push_back(event);
            keyFocus.push_back(focus);
        }
        return takeKey;
    }
    bool UI_DoMouseEvent(MouseEvent const &event) override
    {
        mouse.push_back(event);
        if (event.type == MouseEvent::kDown && captureOnPress) {
            UI_NodeManager::Get().BeginInputCapture(captureOnPress);
            return true;
        }
        return takeMouse;
    }
    bool UI_DoCursor(PointF const &) override
    {
        if (answerCursor) UI_NodeManager::Get().SetCursor(QCursor(Qt::SplitVCursor));
        return answerCursor;
    }
};

class RecordingCapture : public InputCapture {
public:
    std::vector<MouseEvent> moves;
    std::vector<MouseEvent> ups;
    void OnMouseMove(MouseEvent const &e) override { moves.push_back(e); }
    void OnMouseUp(MouseEvent const &e) override { ups.push_back(e); }
};

class KernelEventsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        gLog.clear();
        root->ChildPushBack(mid);
        mid->UI_SetLocalRectF(RectF{10, 10, 200, 100});
        mid->ChildPushBack(leaf);
        leaf->UI_SetLocalRectF(RectF{20, 30, 50, 40});
        test::ShowActiveWindow(*root, RectF{100, 100, 300, 200});
        leaf->UI_GetWidget()->setFocusPolicy(Qt::StrongFocus);
        leaf->UI_SetFocus();
    }
    void TearDown() override
    {
        UI_NodeManager::Get().EndInputCapture();
        root->UI_Show(false);
    }

    IntrusivePtr<LoggingView> root = MakeIntrusive<LoggingView>("root");
    IntrusivePtr<LoggingView> mid = MakeIntrusive<LoggingView>("mid");
    IntrusivePtr<LoggingView> leaf = MakeIntrusive<LoggingView>("leaf");
};

TEST_F(KernelEventsTest, KeysGoDownThroughPreThenUpFromTheFocusNode)
{
    ASSERT_TRUE(leaf->UI_HasFocus());
    EXPECT_FALSE(mid->UI_HasFocus()); // only the node that holds the focus has it

    QTest::keyClick(leaf->UI_GetWidget(), Qt::Key_Return);
    // A key release goes the same way; only the key-down is checked here.
    std::vector<std::string> const expected = {"pre:root", "pre:mid", "pre:leaf", "key:leaf", "key:mid", "key:root"};
    ASSERT_GE(gLog.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(gLog.begin(), gLog.begin() + 6), expected);
    ASSERT_FALSE(leaf->keys.empty());
    EXPECT_EQ(leaf->keys[0].code, KeyboardCode::kReturn);
    EXPECT_EQ(root->keyFocus[0], leaf.get());

    // A true answer ends the walk, in either pass.
    gLog.clear();
    mid->takeKey = true;
    QTest::keyPress(leaf->UI_GetWidget(), Qt::Key_A);
    EXPECT_EQ(gLog, (std::vector<std::string>{"pre:root", "pre:mid", "pre:leaf", "key:leaf", "key:mid"}));
    gLog.clear();
    root->takePre = true;
    QTest::keyPress(leaf->UI_GetWidget(), Qt::Key_A);
    EXPECT_EQ(gLog, (std::vector<std::string>{"pre:root"}));
}

TEST_F(KernelEventsTest, KeyTranslationAndShortcutCompare)
{
    leaf->takeKey = true; // keep the keys from doing anything else
    for (auto [key, mods, code, bits] : {std::tuple{Qt::Key_Escape, Qt::KeyboardModifiers{}, KeyboardCode::kEscape, 0u},
                                         {Qt::Key_Space, Qt::NoModifier, KeyboardCode::kSpace, 0},
                                         {Qt::Key_Left, Qt::ShiftModifier, KeyboardCode::kLeftArrow, kModifierShift},
                                         {Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier, KeyboardCode::kDownArrow,
                                          kModifierCommand | kModifierAlt},
                                         {Qt::Key_Enter, Qt::KeypadModifier, KeyboardCode::kEnter, kModifierKeypad},
                                         {Qt::Key_Delete, Qt::NoModifier, KeyboardCode::kDelete, 0},
                                         {Qt::Key_Backspace, Qt::NoModifier, KeyboardCode::kBackspace, 0},
                                         {Qt::Key_Q, Qt::NoModifier, KeyboardCode::kCharacter, 0}}) {
        leaf->keys.clear();
        QTest::keyPress(leaf->UI_GetWidget(), key, mods);
        ASSERT_EQ(leaf->keys.size(), 1u) << key;
        EXPECT_EQ(leaf->keys[0].code, code) << key;
        EXPECT_EQ(leaf->keys[0].modifiers.Value(), bits) << key;
    }
    EXPECT_EQ(leaf->keys[0].character, u'q'); // of the last key

    KeyboardEvent tab{KeyboardCode::kTab, kivcore::Flags<std::uint32_t>(kModifierShift | kModifierKeypad), true};
    EXPECT_TRUE(tab.CompareShortcut(KeyboardCode(3), kivcore::Flags<std::uint32_t>(2u)));
    EXPECT_FALSE(tab.CompareShortcut(KeyboardCode(3), kivcore::Flags<std::uint32_t>(0u)));
    EXPECT_FALSE(tab.CompareShortcut(KeyboardCode::kReturn, kivcore::Flags<std::uint32_t>(2u)));
    tab.keyDown = false;
    EXPECT_FALSE(tab.CompareShortcut(KeyboardCode(3), kivcore::Flags<std::uint32_t>(2u)));
}

TEST_F(KernelEventsTest, TabMovesFocusFirstAndThenReachesTheNewFocusNode)
{
    auto first = MakeIntrusive<UI_TextEdit>();
    auto second = MakeIntrusive<UI_TextEdit>();
    mid->ChildPushBack(first);
    mid->ChildPushBack(second);
    first->UI_SetLocalRectF(RectF{0, 0, 100, 22});
    second->UI_SetLocalRectF(RectF{0, 30, 100, 22});
    first->UI_SetFocus();
    ASSERT_TRUE(first->UI_HasFocus());

    QTest::keyClick(first->GetLineEdit(), Qt::Key_Tab);
    EXPECT_TRUE(second->UI_HasFocus());
    ASSERT_FALSE(mid->keys.empty());
    EXPECT_EQ(mid->keys[0].code, KeyboardCode::kTab);
    EXPECT_EQ(mid->keyFocus[0], second.get());

    QTest::keyClick(second->GetLineEdit(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(first->UI_HasFocus());
    EXPECT_TRUE(mid->keys.back().CompareShortcut(KeyboardCode::kTab, kivcore::Flags<std::uint32_t>(kModifierShift)));

    // A pre-pass that takes Tab keeps Qt from moving the focus.
    mid->takePre = true;
    QTest::keyClick(first->GetLineEdit(), Qt::Key_Tab);
    EXPECT_TRUE(first->UI_HasFocus());
}

TEST_F(KernelEventsTest, MouseReachesTheNodeUnderThePointerAndUnhandledClicksBubble)
{
    QTest::mouseClick(leaf->UI_GetWidget(), Qt::LeftButton, {}, QPoint(5, 6));
    ASSERT_GE(leaf->mouse.size(), 2u);
    EXPECT_EQ(leaf->mouse[0].type, MouseEvent::kDown);
    EXPECT_EQ(leaf->mouse[0].button, 1);
    EXPECT_EQ(leaf->mouse[0].local, (PointF{5, 6}));
    EXPECT_TRUE(leaf->mouse[0].onSelf);
    EXPECT_EQ(leaf->mouse[0].global, (PointF{100 + 10 + 20 + 5, 100 + 10 + 30 + 6}));
    // The leaf did not take the press, so its parent saw it, over a child.
    ASSERT_FALSE(mid->mouse.empty());
    EXPECT_EQ(mid->mouse[0].local, (PointF{25, 36}));
    EXPECT_FALSE(mid->mouse[0].onSelf);

    mid->mouse.clear();
    leaf->takeMouse = true;
    QTest::mousePress(leaf->UI_GetWidget(), Qt::LeftButton, {}, QPoint(5, 6));
    QTest::mouseRelease(leaf->UI_GetWidget(), Qt::LeftButton, {}, QPoint(5, 6));
    EXPECT_TRUE(mid->mouse.empty());
    QTest::mouseClick(mid->UI_GetWidget(), Qt::RightButton, {}, QPoint(150, 5));
    ASSERT_FALSE(mid->mouse.empty());
    EXPECT_TRUE(mid->mouse[0].onSelf);
    EXPECT_EQ(mid->mouse[0].button, 2);
}

TEST_F(KernelEventsTest, CaptureReceivesEveryMoveUntilTheButtonIsReleased)
{
    auto capture = MakeIntrusive<RecordingCapture>();
    leaf->captureOnPress = capture;
    QTest::mousePress(leaf->UI_GetWidget(), Qt::LeftButton, {}, QPoint(5, 5));
    ASSERT_EQ(UI_NodeManager::Get().GetInputCapture(), capture.get());
    // Moves far outside the node, even over other widgets, reach the capture
    // in the coordinates of the node that started it.
    QTest::mouseMove(leaf->UI_GetWidget(), QPoint(5, 25));
    QTest::mouseMove(leaf->UI_GetWidget(), QPoint(200, -20));
    QTest::mouseMove(root->UI_GetWidget(), QPoint(1, 1));
    ASSERT_EQ(capture->moves.size(), 3u);
    EXPECT_EQ(capture->moves[0].local, (PointF{5, 25}));
    EXPECT_EQ(capture->moves[1].local, (PointF{200, -20}));
    EXPECT_EQ(capture->moves[2].local, (PointF{1 - 30, 1 - 40}));
    EXPECT_EQ(capture->moves[2].global, (PointF{101, 101}));
    std::size_t const leafMoves = leaf->mouse.size();
    QTest::mouseRelease(leaf->UI_GetWidget(), Qt::LeftButton, {}, QPoint(5, 30));
    ASSERT_EQ(capture->ups.size(), 1u);
    EXPECT_EQ(capture->ups[0].local, (PointF{5, 30}));
    EXPECT_EQ(UI_NodeManager::Get().GetInputCapture(), nullptr);
    EXPECT_EQ(leaf->mouse.size(), leafMoves); // nothing went around the capture

    // After the release, moves go to the nodes again.
    QTest::mouseMove(leaf->UI_GetWidget(), QPoint(6, 6));
    EXPECT_EQ(capture->moves.size(), 3u);
}

TEST_F(KernelEventsTest, CursorIsTheAnsweringNodesAndTakenBackWhenNoneAnswers)
{
    QWidget *w = leaf->UI_GetWidget();
    leaf->answerCursor = true;
    QTest::mouseMove(w, QPoint(3, 3));
    EXPECT_EQ(w->cursor().shape(), Qt::SplitVCursor);
    leaf->answerCursor = false;
    QTest::mouseMove(w, QPoint(4, 4));
    EXPECT_EQ(w->cursor().shape(), Qt::ArrowCursor);
    EXPECT_FALSE(w->testAttribute(Qt::WA_SetCursor));
}

TEST_F(KernelEventsTest, NodeReleasedInsideItsOwnHandlerLivesUntilTheHandlerReturns)
{
    class SelfRemoving : public UI_SubView {
    public:
        bool UI_DoMouseEvent(MouseEvent const &e) override
        {
            if (e.type == MouseEvent::kDown) UI_GetParent()->ChildRemove(this);
            return true;
        }
    };
    QPointer<QWidget> widget;
    {
        auto node = MakeIntrusive<SelfRemoving>();
        mid->ChildPushBack(node);
        node->UI_SetLocalRectF(RectF{100, 0, 20, 20});
        widget = node->UI_GetWidget();
    }
    QTest::mousePress(widget.data(), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(mid->UI_CountChildren(), 1);
    ASSERT_FALSE(widget.isNull()); // deferred to the event loop
    QCoreApplication::sendPostedEvents();
    QApplication::processEvents();
    EXPECT_TRUE(widget.isNull());
}

} // namespace
} // namespace kivui

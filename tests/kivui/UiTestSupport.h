#pragma once
// Shown windows, event-loop turns and a listener for the toolkit's tests.

#include <kivui/Message.h>
#include <kivui/UI_ControlView.h>
#include <kivui/UI_InteractiveControlView.h>
#include <kivui/UI_SubView.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include <functional>
#include <memory>
#include <vector>

namespace kivui::test {

// Lets posted layouts and repaints run.
inline void Settle()
{
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}

// Shows `node` as the active window with the given frame on screen, laid out.
inline void ShowActiveWindow(UI_Node &node, kivcore::RectF const &frame)
{
    node.UI_SetGlobalStructureRect(frame);
    node.UI_Show(true);
    QApplication::setActiveWindow(node.UI_GetWidget());
    ASSERT_TRUE(QTest::qWaitForWindowActive(node.UI_GetWidget()));
    Settle();
}

// Collects what a control reports.
struct ControlListener {
    std::vector<int> interactive;
    int changed = 0;
    MessageHandler onInteractive = std::make_shared<std::function<void(Message *)>>([this](Message *m) {
        auto *message = dynamic_cast<UI_InteractiveControlChangedMessage *>(m);
        ASSERT_NE(message, nullptr);
        interactive.push_back(message->GetChangeMessage());
    });
    MessageHandler onChanged = std::make_shared<std::function<void(Message *)>>([this](Message *) { ++changed; });

    // Interactive messages are asked for only where the control has them.
    void Attach(UI_ControlView &control)
    {
        if (auto *interactiveControl = dynamic_cast<UI_InteractiveControlView *>(&control))
            interactiveControl->NotifyWhenChangedInteractively(onInteractive);
        control.NotifyWhenChanged(onChanged);
    }
    // Interactive messages without the 1s of each keystroke.
    std::vector<int> Stages() const
    {
        std::vector<int> out;
        for (int m : interactive)
            if (m != 1) out.push_back(m);
        return out;
    }
};

// A shown, active window; Add places a control in it at 10,10 and attaches
// the listener to it.
class ControlWindowTest : public ::testing::Test {
protected:
    void SetUp() override { ShowActiveWindow(*window, kivcore::RectF{50, 50, 400, 300}); }
    void TearDown() override { window->UI_Show(false); }

    template <typename T>
    kivcore::utility::IntrusivePtr<T> Add(kivcore::utility::IntrusivePtr<T> control, float width = 200)
    {
        window->ChildPushBack(control);
        kivcore::RectF r = control->UI_GetLocalRectF(false);
        r.width = width;
        control->UI_SetLocalRectF(r.Offset(10, 10));
        listener.Attach(*control);
        return control;
    }

    ControlListener listener; // outlives the controls in the window
    kivcore::utility::IntrusivePtr<UI_SubView> window = kivcore::utility::MakeIntrusive<UI_SubView>();
};

} // namespace kivui::test

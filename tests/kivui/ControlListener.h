#pragma once
// Collects what a control reports, for the control tests.

#include <kivui/Message.h>
#include <kivui/UI_ControlView.h>
#include <kivui/UI_InteractiveControlView.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace kivui::test {

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

} // namespace kivui::test

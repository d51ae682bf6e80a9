#pragma once

#include <kivui/kivui_export.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace kivui::dialogs {

// How a scripted response closes a modal dialog or message box.
enum class ScriptedAnswer {
    kOk,     // OK, confirm, the default button
    kCancel, // Cancel, Escape
    kNone,   // only run the action; the dialog stays open for the next response
};

struct ScriptedResponse {
    ScriptedAnswer answer = ScriptedAnswer::kOk;
    // Text typed into the input field (input boxes) before answering.
    std::optional<std::u16string> text;
    // Runs on the shown dialog before the answer (click, type, check...).
    std::function<void(QWidget *dialog)> action;
};

// What a modal run showed, for tests to check.
struct ShownDialog {
    std::u16string title;
    std::u16string message; // message box text or input label; empty for dialogs
};

// Answers modal dialogs and message boxes without a person. Every modal run
// of the toolkit (UI_Dialog::RunModal, the message boxes) takes the next
// response from the queue; nested runs take theirs in order. When no
// response is queued and the platform has no user (offscreen or minimal), the
// run is cancelled instead of blocking; otherwise it runs for real.
class KIVUI_EXPORT ScriptedResponses {
public:
    static void Push(ScriptedResponse response);
    static void PushOk(std::optional<std::u16string> text = std::nullopt);
    static void PushCancel();
    // Runs `action` on the next dialog shown, then answers it with `answer`.
    static void PushAction(std::function<void(QWidget *dialog)> action, ScriptedAnswer answer = ScriptedAnswer::kNone);
    static std::size_t Pending();
    static void Clear();

    // Called with every modal dialog once shown, before its response (for
    // example to grab a picture of it). Empty function removes it.
    static void SetShownHook(std::function<void(QWidget *dialog)> hook);

    static std::vector<ShownDialog> const &History();
    static void ClearHistory();

    // True when modal runs are answered here rather than by a person.
    static bool IsScripted();
};

} // namespace kivui::dialogs

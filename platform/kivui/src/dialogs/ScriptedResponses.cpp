#include <kivui/ScriptedResponses.h>

#include "dialogs/ModalRun_p.h"

#include <QCoreApplication>
#include <QDialog>
#include <QGuiApplication>
#include <QPointer>

#include <deque>

Q_LOGGING_CATEGORY(lcKivUiDialogs, "kiv.ui.dialogs", QtFatalMsg)

namespace kivui::dialogs {

namespace {

struct State {
    std::deque<ScriptedResponse> queue;
    std::function<void(QWidget *)> shownHook;
    std::vector<ShownDialog> history;
};

State &Global()
{
    static State state;
    return state;
}

bool PlatformHasNoUser()
{
    QString const platform = QGuiApplication::platformName();
    return platform == QLatin1String("offscreen") || platform == QLatin1String("minimal");
}

} // namespace

void ScriptedResponses::Push(ScriptedResponse response)
{
    Global().queue.push_back(std::move(response));
}

void ScriptedResponses::PushOk(std::optional<std::u16string> text)
{
    Push(ScriptedResponse{ScriptedAnswer::kOk, std::move(text), {}});
}

void ScriptedResponses::PushCancel()
{
    Push(ScriptedResponse{ScriptedAnswer::kCancel, std::nullopt, {}});
}

void ScriptedResponses::PushAction(std::function<void(QWidget *)> action, ScriptedAnswer answer)
{
    Push(ScriptedResponse{answer, std::nullopt, std::move(action)});
}

std::size_t ScriptedResponses::Pending()
{
    return Global().queue.size();
}

void ScriptedResponses::Clear()
{
    Global().queue.clear();
}

void ScriptedResponses::SetShownHook(std::function<void(QWidget *)> hook)
{
    Global().shownHook = std::move(hook);
}

std::vector<ShownDialog> const &ScriptedResponses::History()
{
    return Global().history;
}

void ScriptedResponses::ClearHistory()
{
    Global().history.clear();
}

bool ScriptedResponses::IsScripted()
{
    State const &s = Global();
    return !s.queue.empty() || s.shownHook || PlatformHasNoUser();
}

namespace detail {

int RunModal(QDialog &dialog, ModalAnswerers const &answerers)
{
    Global().history.push_back(ShownDialog{dialog.windowTitle().toStdU16String(), answerers.message});
    if (!ScriptedResponses::IsScripted()) return dialog.exec();

    QPointer<QDialog> guard(&dialog);
    bool finished = false;
    int result = QDialog::Rejected;
    auto const connection = QObject::connect(&dialog, &QDialog::finished, &dialog, [&finished, &result](int r) {
        finished = true;
        result = r;
    });
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.show();
    QCoreApplication::processEvents();
    if (auto hook = Global().shownHook; hook && guard) hook(guard);

    while (guard && !finished) {
        if (Global().queue.empty()) {
            // Nobody can answer: cancel rather than block a test run forever.
            qCWarning(lcKivUiDialogs) << "no scripted response for" << dialog.windowTitle() << "- cancelled";
            if (answerers.cancel) answerers.cancel();
            if (guard && !finished) guard->reject();
            break;
        }
        ScriptedResponse response = std::move(Global().queue.front());
        Global().queue.pop_front();
        if (response.action) response.action(guard);
        if (!guard || finished) break;
        if (response.text && answerers.text) answerers.text(*response.text);
        if (response.answer == ScriptedAnswer::kOk && answerers.ok)
            answerers.ok();
        else if (response.answer == ScriptedAnswer::kCancel) {
            if (answerers.cancel)
                answerers.cancel();
            else
                guard->reject();
        }
        QCoreApplication::processEvents();
    }
    if (guard) {
        QObject::disconnect(connection);
        guard->hide();
    }
    return result;
}

QWidget *ParentWindowOf(QWidget *nodeWidget)
{
    return nodeWidget ? nodeWidget->window() : nullptr;
}

} // namespace detail
} // namespace kivui::dialogs

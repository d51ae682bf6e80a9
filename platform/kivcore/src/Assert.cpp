#include <kivcore/Assert.h>

#include <QFile>
#include <QLoggingCategory>

#include <atomic>
#include <csignal>

namespace kivcore::debug {
namespace {

Q_LOGGING_CATEGORY(lcAssert, "kiv.core.assert", QtWarningMsg)

AssertHandler &Handler()
{
    static AssertHandler handler;
    return handler;
}

std::atomic<long> sCount{0};

} // namespace

bool IsDebuggerAttached()
{
    // Linux: a tracer's pid stands in /proc/self/status.
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return false;
    const QByteArray text = status.readAll();
    const int at = text.indexOf("TracerPid:");
    if (at < 0) return false;
    const int end = text.indexOf('\n', at);
    return text.mid(at + 10, end - at - 10).trimmed().toLong() != 0;
}

void DoSimpleAssert(char const *unit, char const *function, char const *condition, char const *message, int line)
{
    ++sCount;
    AssertInfo info{unit ? unit : "", function ? function : "", condition ? condition : "", message ? message : "",
                    line};
    if (Handler()) {
        Handler()(info);
        return;
    }
    qCWarning(lcAssert).noquote() << "assertion failed:" << QString::fromStdString(info.condition) << "in"
                                  << QString::fromStdString(info.function) << "(" << QString::fromStdString(info.unit)
                                  << ":" << line << ")" << QString::fromStdString(info.message);
    if (IsDebuggerAttached()) std::raise(SIGTRAP);
}

AssertHandler SetAssertHandler(AssertHandler handler)
{
    return std::exchange(Handler(), std::move(handler));
}

long AssertCount()
{
    return sCount.load();
}

} // namespace kivcore::debug

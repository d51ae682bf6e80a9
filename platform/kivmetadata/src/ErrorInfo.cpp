#include <kivmetadata/ErrorInfo.h>

#include "Log_p.h"

#include <deque>
#include <mutex>

namespace kivmetadata {
namespace {

constexpr std::size_t kMaxErrorInfos = 1000;

std::deque<ErrorInfo> &Errors()
{
    static std::deque<ErrorInfo> errors;
    return errors;
}

// Files are read and saved on worker threads too.
std::mutex &ErrorsLock()
{
    static std::mutex lock;
    return lock;
}

} // namespace

std::vector<ErrorInfo> GetErrorInfos()
{
    std::lock_guard guard(ErrorsLock());
    auto const &errors = Errors();
    return {errors.begin(), errors.end()};
}

void AddErrorInfo(std::string description, std::string context)
{
    qCDebug(lcKivMetadata, "%s (%s)", description.c_str(), context.c_str());
    std::lock_guard guard(ErrorsLock());
    auto &errors = Errors();
    errors.push_back(ErrorInfo{std::move(description), std::move(context)});
    while (errors.size() > kMaxErrorInfos)
        errors.pop_front();
}

void ClearErrorInfos()
{
    std::lock_guard guard(ErrorsLock());
    Errors().clear();
}

} // namespace kivmetadata

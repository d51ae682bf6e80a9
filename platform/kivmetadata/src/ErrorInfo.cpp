#include <kivmetadata/ErrorInfo.h>

#include "Log_p.h"

#include <deque>

namespace kivmetadata {
namespace {

constexpr std::size_t kMaxErrorInfos = 1000;

std::deque<ErrorInfo> &Errors()
{
    static std::deque<ErrorInfo> errors;
    return errors;
}

} // namespace

std::vector<ErrorInfo> GetErrorInfos()
{
    auto const &errors = Errors();
    return {errors.begin(), errors.end()};
}

void AddErrorInfo(std::string description, std::string context)
{
    qCDebug(lcKivMetadata, "%s (%s)", description.c_str(), context.c_str());
    auto &errors = Errors();
    errors.push_back(ErrorInfo{std::move(description), std::move(context)});
    while (errors.size() > kMaxErrorInfos) errors.pop_front();
}

void ClearErrorInfos()
{
    Errors().clear();
}

} // namespace kivmetadata

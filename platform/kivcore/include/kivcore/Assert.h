#pragma once

#include <kivcore/kivcore_export.h>

#include <functional>
#include <string>

namespace kivcore::debug {

// What a failed debug assertion reports. `unit` is the logical source unit
// ("src/BindControl", "layout/src/TableLayout"), `function` the qualified
// function name, `condition` the text of the failed condition.
struct AssertInfo {
    std::string unit;
    std::string function;
    std::string condition;
    std::string message;
    int line = 0;
};

using AssertHandler = std::function<void(AssertInfo const &)>;

// Reports a failed assertion. Breaks into the debugger when one is attached,
// otherwise reports through the "kiv.core.assert" logging category and returns,
// so the caller continues with a neutral result. An installed handler receives
// the report instead of the log.
KIVCORE_EXPORT void DoSimpleAssert(char const *unit, char const *function, char const *condition,
                                   char const *message = nullptr, int line = 0);

KIVCORE_EXPORT bool IsDebuggerAttached();

// Installs a handler that receives every assertion instead of the default
// report (and instead of the debugger break); returns the previous handler.
// Pass an empty handler to restore the default.
KIVCORE_EXPORT AssertHandler SetAssertHandler(AssertHandler handler);

// Number of assertions raised since process start; handy in tests.
KIVCORE_EXPORT long AssertCount();

} // namespace kivcore::debug

// KIV_ASSERT(unit, function, condition): condition text is kept verbatim.
#define KIV_ASSERT(unit, function, condition)                                                                          \
    ((condition) ? (void)0 : ::kivcore::debug::DoSimpleAssert(unit, function, #condition, nullptr, __LINE__))

#define KIV_ASSERT_MSG(unit, function, condition, message)                                                             \
    ((condition) ? (void)0 : ::kivcore::debug::DoSimpleAssert(unit, function, #condition, message, __LINE__))

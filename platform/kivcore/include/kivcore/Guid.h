#pragma once

#include <kivcore/kivcore_export.h>

#include <array>
#include <cstdint>
#include <string>

namespace kivcore::utility {

class KIVCORE_EXPORT Guid {
public:
    Guid() = default;
    static Guid CreateUnique();
    // "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", lower case, no braces.
    std::string AsString() const;
    bool IsNull() const;
    friend bool operator==(Guid const &, Guid const &) = default;

private:
    std::array<std::uint8_t, 16> mBytes{};
};

} // namespace kivcore::utility
